#include "Quorvel/Views/ChipMenu.h"

#include <utility>

#include "Quorvel/Core/BarViewModel.h"

namespace quorvel {

namespace {

MenuItem entry(std::string title, const PerformOnModel& perform, ModelAction action)
{
    return {std::move(title), true, [perform, action = std::move(action)] { perform(action); }};
}

MenuItem activateEntry(std::string title, WindowID id, const PerformOnModel& perform)
{
    return entry(std::move(title), perform, [id](BarViewModel& model) {
        model.activateWindow(id, BarViewModel::FocusBeforeActivation::no);
    });
}

Menu windowMenu(const ChipData& chip, const PerformOnModel& perform)
{
    auto id = chip.id;
    return {
        chip.isMinimized
            ? activateEntry("Restore", id, perform)
            : entry("Minimise", perform, [id](BarViewModel& model) { model.minimizeWindow(id); }),
        entry("Close", perform, [id](BarViewModel& model) { model.closeWindow(id); }),
    };
}

Menu groupMenu(const GroupedChipData& group, const BarViewModel& model, SpaceID space,
    const PerformOnModel& perform)
{
    Menu menu;
    auto ids = group.windowIDs;
    for (auto id : model.walkingOrder(space, group)) {
        auto* chip = model.chip(space, id);
        menu.push_back(activateEntry(
            chip->windowTitle.empty() ? chip->appName : chip->windowTitle, id, perform));
    }
    menu.push_back({});
    menu.push_back(entry("Minimise All", perform, [ids](BarViewModel& current) {
        for (auto id : ids)
            current.minimizeWindow(id);
    }));
    menu.push_back(entry("Close All", perform, [ids](BarViewModel& current) {
        for (auto id : ids)
            current.closeWindow(id);
    }));
    return menu;
}

}

Menu chipMenu(
    const DisplayItem& item, const BarViewModel& model, SpaceID space, PerformOnModel perform)
{
    if (auto* group = std::get_if<GroupedChipData>(&item))
        return groupMenu(*group, model, space, perform);
    return windowMenu(std::get<ChipData>(item), perform);
}

}
