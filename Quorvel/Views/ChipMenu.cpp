#include "Quorvel/Views/ChipMenu.h"

#include <algorithm>
#include <utility>

#include "Quorvel/Core/BarViewModel.h"
#include "Quorvel/Core/NewWindow.h"
#include "Quorvel/Core/PinStore.h"
#include "Quorvel/Platform/Translation.h"
#include "Quorvel/Platform/Workspace.h"

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
    return tr("Window");
}

void separate(Menu& menu)
{
    if (!menu.empty() && !menu.back().title.empty())
        menu.push_back({});
}

/// What the application offers of its own, and another window of it.
void addApplicationEntries(Menu& menu, const std::string& bundleID, const ChipMenuContext& context)
{
    auto url = context.workspace.applicationURL(bundleID);
    if (!url)
        return;
    bool offersWindow = false;
    for (auto& action : context.workspace.actions(*url)) {
        offersWindow |= action.identifier == kNewWindowAction;
        menu.push_back(entry(action.title, context.viewModel,
            [&workspace = context.workspace, action, url = *url](
                BarViewModel&) { workspace.perform(action, url); }));
    }
    if (!offersWindow && context.workspace.canOpenNewInstance(*url))
        menu.push_back(entry(tr("New Window"), context.viewModel,
            [&workspace = context.workspace, url = *url](
                BarViewModel&) { workspace.openNewInstance(url); }));
}

/// Offered for what can be started again.
void addPinEntry(Menu& menu, const std::string& bundleID, const ChipMenuContext& context)
{
    bool isPinned = context.pinStore.isPinned(bundleID, PinDestination::bar);
    if (!isPinned && !context.workspace.applicationURL(bundleID))
        return;
    menu.push_back(entry(isPinned ? tr("Unpin from Bar") : tr("Pin to Bar"), context.viewModel,
        [&pins = context.pinStore, bundleID, isPinned](
            BarViewModel&) { pins.setPin(bundleID, PinDestination::bar, !isPinned); }));
}

void addMoveEntry(Menu& menu, const std::vector<WindowID>& windows, const ChipMenuContext& context)
{
    if (std::ranges::count(context.spaces, false, &SpaceCellData::isFullscreen) < 2
        || !context.onMoveWindowToSpace)
        return;
    MenuItem move{tr("Move to Desktop"), true, {}};
    for (auto& space : context.spaces) {
        if (space.isFullscreen)
            continue;
        auto item = entry(space.name, context.viewModel,
            [onMove = context.onMoveWindowToSpace, windows, to = space.id](
                BarViewModel&) { onMove(windows, to); });
        item.isEnabled = space.id != context.spaceID;
        item.isChecked = !item.isEnabled;
        item.kind = MenuItemKind::choice;
        move.submenu.push_back(std::move(item));
    }
    menu.push_back(std::move(move));
}

void addFooter(Menu& menu, const std::optional<std::string>& bundleID, WindowID window,
    const ChipMenuContext& context)
{
    separate(menu);
    if (bundleID)
        addPinEntry(menu, *bundleID, context);
    menu.push_back(entry(tr("Quit"), context.viewModel,
        [window](BarViewModel& current) { current.quitApplicationOf(window); }));
}

Menu windowMenu(const ChipData& chip, const ChipMenuContext& context)
{
    auto id = chip.id;
    Menu menu;
    if (chip.bundleIdentifier)
        addApplicationEntries(menu, *chip.bundleIdentifier, context);
    separate(menu);
    menu.push_back(chip.isMinimized
            ? activateEntry(tr("Restore"), id, context.viewModel)
            : entry(tr("Minimise"), context.viewModel,
                [id](BarViewModel& current) { current.minimizeWindow(id); }));
    addMoveEntry(menu, {id}, context);
    menu.push_back(entry(
        tr("Close"), context.viewModel, [id](BarViewModel& current) { current.closeWindow(id); }));
    addFooter(menu, chip.bundleIdentifier, id, context);
    return menu;
}

Menu groupMenu(const GroupedChipData& group, const ChipMenuContext& context)
{
    auto& model = context.viewModel;
    Menu menu;
    auto& chips = model.chipsBySpace.value();
    for (auto id : walkingOrder(chips, context.spaceID, group)) {
        auto* chip = findChip(chips, context.spaceID, id);
        auto title = entryTitle(*chip);
        if (chip->wantsAttention)
            title += "  \u2022";
        menu.push_back(activateEntry(std::move(title), id, model));
        menu.back().isChecked = chip->isFocused;
        menu.back().kind = MenuItemKind::choice;
    }
    separate(menu);
    if (group.bundleIdentifier)
        addApplicationEntries(menu, *group.bundleIdentifier, context);
    separate(menu);
    auto ids = group.windowIDs;
    menu.push_back(entry(
        tr("Minimise All"), model, [ids](BarViewModel& current) { current.minimizeWindows(ids); }));
    addMoveEntry(menu, ids, context);
    menu.push_back(
        entry(tr("Close All"), model, [ids](BarViewModel& current) { current.closeWindows(ids); }));
    addFooter(menu, group.bundleIdentifier, ids.front(), context);
    return menu;
}

}

Menu chipMenu(const DisplayItem& item, const ChipMenuContext& context)
{
    if (auto* group = std::get_if<GroupedChipData>(&item))
        return groupMenu(*group, context);
    return windowMenu(std::get<ChipData>(item), context);
}

Menu pinMenu(const std::string& bundleID, const ChipMenuContext& context)
{
    Menu menu;
    menu.push_back({tr("Open"), true, [bundleID, launch = context.onLaunch] { launch(bundleID); }});
    addApplicationEntries(menu, bundleID, context);
    separate(menu);
    addPinEntry(menu, bundleID, context);
    return menu;
}

}
