#include "Quorvel/Views/ChipMenu.h"

#include <algorithm>
#include <utility>

#include "Quorvel/Core/BarViewModel.h"
#include "Quorvel/Core/NewWindow.h"
#include "Quorvel/Core/PinStates.h"
#include "Quorvel/Core/PinStore.h"
#include "Quorvel/Core/WindowStates.h"
#include "Quorvel/Platform/Translation.h"
#include "Quorvel/Platform/Workspace.h"

namespace quorvel {

namespace {

/// Windows of a group that its menu lists itself.
constexpr std::size_t kMostWindowEntries = 10;
constexpr auto* kAttentionMark = "  \u2022";

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

std::string titleOf(WindowState state)
{
    switch (state) {
    case WindowState::maximized:
        return tr("Maximise");
    case WindowState::zoomed:
        return tr("Zoom");
    case WindowState::fullScreen:
        return tr("Full Screen");
    case WindowState::keptAbove:
        return tr("Keep Above Others");
    case WindowState::onEverySpace:
        return tr("On All Desktops");
    }
    return {};
}

MenuItem stateEntry(
    std::string title, WindowID id, WindowState state, bool isOn, const ChipMenuContext& context)
{
    return entry(std::move(title), context.viewModel,
        [&states = context.windowStates, id, state, isOn](
            BarViewModel&) { states.set(id, state, isOn); });
}

void addStateEntries(
    Menu& menu, WindowID id, const WindowStates::Offers& offers, const ChipMenuContext& context)
{
    for (auto& [state, isOn] : offers) {
        if (state == WindowState::onEverySpace)
            continue; // where the desktops are
        bool isChecked = isOn.value_or(false);
        menu.push_back(stateEntry(titleOf(state), id, state, !isChecked, context));
        menu.back().isChecked = isChecked;
        menu.back().kind = isOn ? MenuItemKind::toggle : MenuItemKind::action;
    }
}

/// Whether the windows, or the only one, are on every desktop; absent if that cannot be changed.
using OnEverySpace = std::optional<bool>;

OnEverySpace onEverySpace(const WindowStates::Offers& offers)
{
    auto found = std::ranges::find(offers, WindowState::onEverySpace, &WindowStates::Offer::state);
    return found == offers.end() ? std::nullopt : found->isOn;
}

void addEverySpaceEntries(Menu& menu, WindowID id, bool isOnEvery, const ChipMenuContext& context)
{
    for (bool every : {true, false}) {
        menu.push_back(
            stateEntry(every ? titleOf(WindowState::onEverySpace) : tr("Only on This Desktop"), id,
                WindowState::onEverySpace, every, context));
        menu.back().isChecked = every == isOnEvery;
        menu.back().kind = MenuItemKind::choice;
    }
    separate(menu);
}

void addMoveEntry(Menu& menu, const std::vector<WindowID>& windows, OnEverySpace isOnEvery,
    const ChipMenuContext& context)
{
    if (std::ranges::count(context.spaces, false, &SpaceCellData::isFullscreen) < 2
        || !context.onMoveWindowToSpace)
        return;
    MenuItem move{tr("Move to Desktop"), true, {}};
    if (isOnEvery)
        addEverySpaceEntries(move.submenu, windows.front(), *isOnEvery, context);
    for (auto& space : context.spaces) {
        if (space.isFullscreen)
            continue;
        auto item = entry(space.name, context.viewModel,
            [onMove = context.onMoveWindowToSpace, windows, to = space.id](
                BarViewModel&) { onMove(windows, to); });
        item.isEnabled = space.id != context.spaceID;
        item.isChecked = !item.isEnabled && !isOnEvery.value_or(false);
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

/// Of a group, it is about the window that stands for it, and says so.
void addAboutEntry(Menu& menu, WindowID id, bool isInGroup, const ChipMenuContext& context)
{
    auto about = context.aboutWindow ? context.aboutWindow(id) : Menu{};
    auto* chip = findChip(context.viewModel.chipsBySpace.value(), context.spaceID, id);
    if (about.empty() || !chip)
        return;
    if (isInGroup)
        about.insert(about.begin(), {{entryTitle(*chip), false, {}}, {}});
    separate(menu);
    menu.push_back({tr("About This Window"), true, {}, false, std::move(about)});
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
    auto offers = context.windowStates.offers(id);
    addStateEntries(menu, id, offers, context);
    addMoveEntry(menu, {id}, onEverySpace(offers), context);
    menu.push_back(entry(
        tr("Close"), context.viewModel, [id](BarViewModel& current) { current.closeWindow(id); }));
    addFooter(menu, chip.bundleIdentifier, id, context);
    addAboutEntry(menu, id, false, context);
    return menu;
}

/// An entry for each window; what follows them stays in sight however many there are.
Menu windowEntries(const GroupedChipData& group, const ChipMenuContext& context)
{
    Menu menu;
    auto& chips = context.viewModel.chipsBySpace.value();
    auto ids = context.viewModel.walkingOrder(context.spaceID, group);
    bool haveAllRoom = ids.size() <= kMostWindowEntries;
    MenuItem more{tr("More Windows"), true, {}};
    bool isMoreAsking = false;
    for (auto id : ids) {
        auto* chip = findChip(chips, context.spaceID, id);
        bool isListed = haveAllRoom || menu.size() + 1 < kMostWindowEntries;
        auto title = entryTitle(*chip) + (chip->wantsAttention ? kAttentionMark : "");
        isMoreAsking |= !isListed && chip->wantsAttention;
        auto& list = isListed ? menu : more.submenu;
        list.push_back(activateEntry(std::move(title), id, context.viewModel));
        list.back().isChecked = chip->isFocused;
        list.back().kind = MenuItemKind::choice;
    }
    if (haveAllRoom)
        return menu;
    if (isMoreAsking)
        more.title += kAttentionMark;
    menu.push_back(std::move(more));
    return menu;
}

Menu groupMenu(const GroupedChipData& group, const ChipMenuContext& context)
{
    auto& model = context.viewModel;
    auto menu = windowEntries(group, context);
    separate(menu);
    if (group.bundleIdentifier)
        addApplicationEntries(menu, *group.bundleIdentifier, context);
    separate(menu);
    auto ids = group.windowIDs;
    menu.push_back(entry(
        tr("Minimise All"), model, [ids](BarViewModel& current) { current.minimizeWindows(ids); }));
    addMoveEntry(menu, ids, {}, context);
    menu.push_back(
        entry(tr("Close All"), model, [ids](BarViewModel& current) { current.closeWindows(ids); }));
    addFooter(menu, group.bundleIdentifier, ids.front(), context);
    addAboutEntry(menu, ids.front(), true, context);
    return menu;
}

/// "Inbox – Desktop 2", so that it is known where the entry leads.
std::string titleElsewhere(const FoundWindow& window, const ChipMenuContext& context)
{
    auto title = entryTitle(window.chip);
    auto space = std::ranges::find(
        context.spaces, window.space, [](auto& cell) { return std::optional{cell.id}; });
    if (space != context.spaces.end())
        title += "  \u2013  " + space->name;
    return window.chip.wantsAttention ? title + kAttentionMark : title;
}

bool canFetch(const FoundWindow& window, const ChipMenuContext& context)
{
    auto isFullscreen = [&](auto& cell) { return cell.id == window.space && cell.isFullscreen; };
    return window.space && context.onWindowsFetched
        && std::ranges::none_of(context.spaces, isFullscreen);
}

MenuItem fetchEntry(std::string title, const FoundWindow& window, const ChipMenuContext& context)
{
    return entry(std::move(title), context.viewModel,
        [fetch = context.onWindowsFetched, id = window.chip.id, from = *window.space](
            BarViewModel&) { fetch({id}, from); });
}

/// The windows of an application that has none here: each leads there.
void addWindowsElsewhere(
    Menu& menu, const std::vector<FoundWindow>& windows, const ChipMenuContext& context)
{
    MenuItem more{tr("More Windows"), true, {}};
    for (auto& window : windows) {
        bool isListed
            = windows.size() <= kMostWindowEntries || menu.size() + 1 < kMostWindowEntries;
        (isListed ? menu : more.submenu)
            .push_back(entry(titleElsewhere(window, context), context.viewModel,
                [go = context.onWindowRequested, id = window.chip.id](BarViewModel&) { go(id); }));
    }
    if (!more.submenu.empty())
        menu.push_back(std::move(more));
}

/// Those that can come here.
void addFetchEntry(
    Menu& menu, const std::vector<FoundWindow>& windows, const ChipMenuContext& context)
{
    MenuItem fetch{tr("Move Here"), true, {}};
    for (auto& window : windows) {
        if (canFetch(window, context))
            fetch.submenu.push_back(fetchEntry(titleElsewhere(window, context), window, context));
    }
    if (windows.size() == 1 && !fetch.submenu.empty())
        menu.push_back(fetchEntry(std::move(fetch.title), windows.front(), context));
    else if (!fetch.submenu.empty())
        menu.push_back(std::move(fetch));
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
    auto windows = context.pinStates.windows(bundleID);
    if (windows.empty()) {
        menu.push_back(
            {tr("Open"), true, [bundleID, launch = context.onLaunch] { launch(bundleID); }});
        addApplicationEntries(menu, bundleID, context);
        separate(menu);
        addPinEntry(menu, bundleID, context);
        return menu;
    }
    addWindowsElsewhere(menu, windows, context);
    separate(menu);
    addApplicationEntries(menu, bundleID, context);
    separate(menu);
    addFetchEntry(menu, windows, context);
    std::vector<WindowID> ids;
    ids.reserve(windows.size());
    for (auto& window : windows)
        ids.push_back(window.chip.id);
    menu.push_back(entry(ids.size() > 1 ? tr("Close All") : tr("Close"), context.viewModel,
        [ids](BarViewModel& current) { current.closeWindows(ids); }));
    addFooter(menu, bundleID, ids.front(), context);
    return menu;
}

}
