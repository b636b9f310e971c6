#include "Quorvel/Views/ChipMenu.h"

#include <utility>

#include "Quorvel/Core/BarViewModel.h"

namespace quorvel {

namespace {

template <typename Action>
MenuItem entry(std::string title, const BarViewModel& model, Action action)
{
    return {std::move(title), true, [weak = model.weakReference(), action = std::move(action)] {
                if (auto* current = weak.get())
                    action(*current);
            }};
}

MenuItem activateEntry(std::string title, WindowID id, const BarViewModel& model)
{
    return entry(std::move(title), model, [id](BarViewModel& current) {
        current.activateWindow(id, BarViewModel::FocusBeforeActivation::no);
    });
}

/// Never empty, for that would be a separator.
std::string entryTitle(const ChipData& chip)
{
    for (auto* title : {&chip.windowTitle, &chip.appName}) {
        if (!title->empty())
            return *title;
    }
    return "Window";
}

Menu windowMenu(const ChipData& chip, const BarViewModel& model)
{
    auto id = chip.id;
    return {
        chip.isMinimized
            ? activateEntry("Restore", id, model)
            : entry("Minimise", model, [id](BarViewModel& current) { current.minimizeWindow(id); }),
        entry("Close", model, [id](BarViewModel& current) { current.closeWindow(id); }),
    };
}

Menu groupMenu(const GroupedChipData& group, const BarViewModel& model, SpaceID space)
{
    Menu menu;
    for (auto id : model.walkingOrder(space, group)) {
        if (auto* chip = model.chip(space, id))
            menu.push_back(activateEntry(entryTitle(*chip), id, model));
    }
    menu.push_back({});
    auto ids = group.windowIDs;
    menu.push_back(entry(
        "Minimise All", model, [ids](BarViewModel& current) { current.minimizeWindows(ids); }));
    menu.push_back(
        entry("Close All", model, [ids](BarViewModel& current) { current.closeWindows(ids); }));
    return menu;
}

}

Menu chipMenu(const DisplayItem& item, const BarViewModel& model, SpaceID space)
{
    if (auto* group = std::get_if<GroupedChipData>(&item))
        return groupMenu(*group, model, space);
    return windowMenu(std::get<ChipData>(item), model);
}

}
