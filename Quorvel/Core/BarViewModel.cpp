#include "Quorvel/Core/BarViewModel.h"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <utility>

#include "Quorvel/Core/BadgeService.h"
#include "Quorvel/Core/UserSettings.h"
#include "Quorvel/Platform/Bundles.h"
#include "Quorvel/Platform/Displays.h"
#include "Quorvel/Platform/Workspace.h"
#include "Quorvel/Skylight/Minimal.h"
#include "Quorvel/Skylight/WindowStore.h"

namespace quorvel {

namespace {

/// What a map knows under a key that may be missing.
template <typename Value>
std::optional<Value> lookUp(
    const std::map<std::string, Value>& map, const std::optional<std::string>& key)
{
    if (!key || map.empty())
        return std::nullopt;
    auto found = map.find(*key);
    return found == map.end() ? std::nullopt : std::optional{found->second};
}

/// True if the value was another one.
template <typename Value, typename Other> bool assign(Value& target, Other&& value)
{
    if (target == value)
        return false;
    target = std::forward<Other>(value);
    return true;
}

}

const std::string& groupKey(const TrackedWindow& window)
{
    return window.bundleIdentifier ? *window.bundleIdentifier : window.appName;
}

BarViewModel::BarViewModel(WindowStore& windowStore, UserSettings& settings,
    BadgeService& badgeService, const Platform& platform)
    : m_windowStore(windowStore)
    , m_settings(settings)
    , m_badgeService(badgeService)
    , m_dispatch(platform.dispatch)
    , m_windowServer(platform.windowServer)
    , m_displays(platform.displays)
    , m_workspace(platform.workspace)
    , m_bundles(platform.bundles)
    , m_trace(platform.trace)
    , m_spaceWindows(platform.windowServer, platform.displays)
    , m_lateRequests(platform.dispatch)
    , m_calls(platform.accessibility, &m_lateRequests)
    , m_icons(platform.workspace)
    , m_groups(platform.trace)
    , m_memory(m_order, m_groups, windowStore, platform)
    , m_titleNews(platform.text)
{
    subscribe();
    m_badgeService.start();
    refresh();
}

void BarViewModel::subscribe()
{
    auto later = [this](auto&) { refreshSoon(); };
    m_subscriptions.push_back(m_settings.data().subscribe(later));
    m_subscriptions.push_back(m_badgeService.badgesByBundleID().subscribe(later));
    m_subscriptions.push_back(m_badgeService.progressByBundleID().subscribe(later));
    m_subscriptions.push_back(m_badgeService.attentionByBundleID().subscribe(later));
    m_subscriptions.push_back(m_badgeService.attentionWindows().subscribe(later));
    m_subscriptions.push_back(m_icons.didChange.subscribe([this] { refreshSoon(); }));
}

void BarViewModel::refreshSoon()
{
    if (!m_refresh.isPending())
        m_refresh = m_dispatch.main().after(Duration::zero(), [this] { refresh(); });
}

void BarViewModel::refresh(std::optional<SpaceWindows::Answer> given)
{
    auto answer = given ? std::move(*given) : m_spaceWindows.ask();
    m_refresh = {};
    ++m_debugEventSequence;
    // With a screen there is a space: no answer says nothing about the windows.
    if ((!answer.spaces.empty() || m_displays.screens().empty())
        && answer.spaces != spaces.value()) {
        // Which display is a space's own decides where windows are that meet none.
        for (auto& info : answer.spaces)
            m_changedBars.insert(info.spaceID);
        m_memory.follow(answer.spaces);
        spaces.set(std::move(answer.spaces));
    }
    activeSpaceID.set(m_windowServer.activeSpace());

    auto focus = resolveFocus();
    m_trace.line("refresh focus store={} pendingIn={} effective={} reason={}{} seq={}",
        orNil(m_windowStore.focusedWindowID()), orNil(m_pendingFocusedWindowID),
        orNil(focus.effective), focus.reason, focus.keys, m_debugEventSequence);
    publish(focus.effective);
}

void BarViewModel::publish(std::optional<WindowID> focused)
{
    // To come to a window is to have seen what it asked for.
    if (focused && m_badgeService.attentionWindows().value().contains(*focused))
        m_badgeService.clearAttention(*focused);
    if (focused != focusedWindowID.value())
        m_trace.line("published focus id={}", orNil(focused));
    focusedWindowID.set(focused);
    forgetOldTitles();
    findBundlesWithAttentionWindows();
    auto windows = m_windowStore.windowsBySpace();
    auto changed = std::exchange(m_changedBars, {});
    updateFrames(windows, changed);
    updateChips(windows, changed);
    updateSummaries(changed);
    updateItems(changed);
    if (!changed.empty())
        barsDidChange.emit(changed);
}

BarViewModel::FocusDecision BarViewModel::resolveFocus()
{
    auto store = m_windowStore.focusedWindowID();
    auto follow = [&](std::string_view reason, std::string keys = {}) {
        dropPendingFocus();
        return FocusDecision{store, reason, std::move(keys)};
    };
    if (std::exchange(m_hasPendingExpired, false))
        return follow("pending-expired");
    if (!m_pendingFocusedWindowID)
        return follow("store(no-pending)");
    if (m_pendingFocusedWindowID == store)
        return follow("pending-confirmed");
    auto* pending = m_windowStore.window(*m_pendingFocusedWindowID);
    if (!pending)
        return follow("pending-abandoned-missing-window");

    auto* focused = store ? m_windowStore.window(*store) : nullptr;
    std::string keys;
    if (m_trace.isOn())
        keys = fmt::format(" pk={} sk={}", sanitizeLogField(groupKey(*pending)),
            focused ? sanitizeLogField(groupKey(*focused)) : "nil");
    if (focused && groupKey(*focused) != groupKey(*pending)) {
        // The window that had the focus at the click still has it, so the system has not answered.
        // Taken for the user's going elsewhere, this darkened one clicked chip in six while many
        // windows changed.
        if (m_focusBeforePending.contains(*store))
            return {m_pendingFocusedWindowID, "pending-preserved-unanswered", std::move(keys)};
        return follow("pending-abandoned-different-app", std::move(keys));
    }
    // The system has answered: to come back to the old window is news.
    if (focused && !m_focusBeforePending.contains(*store))
        m_focusBeforePending.clear();
    return {m_pendingFocusedWindowID, "pending-preserved-same-app", std::move(keys)};
}

void BarViewModel::dropPendingFocus()
{
    m_pendingFocusedWindowID.reset();
    m_focusBeforePending.clear();
    m_pendingExpiry = {};
}

void BarViewModel::setPendingFocus(WindowID id)
{
    if (auto store = m_windowStore.focusedWindowID())
        m_focusBeforePending.insert(*store);
    if (auto earlier = std::exchange(m_pendingFocusedWindowID, id))
        m_focusBeforePending.insert(*earlier);
    m_focusBeforePending.erase(id);
    m_pendingExpiry = m_dispatch.main().after(kPendingFocusExpiry, [this] {
        m_hasPendingExpired = true;
        refresh();
    });
}

// MARK: Chips

void BarViewModel::updateChips(const WindowsBySpace& windows, std::set<SpaceID>& changed)
{
    chipsBySpace.update([&](ChipsBySpace& all) {
        bool hasChanged = false;
        std::set<SpaceID> present;
        for (auto& info : spaces.value()) {
            auto found = windows.find(info.spaceID);
            if (found == windows.end())
                continue;
            present.insert(info.spaceID);
            auto& chips = all[info.spaceID];
            auto& ofSpace = found->second;
            bool isOther = chips.size() != ofSpace.size();
            chips.resize(ofSpace.size());
            for (std::size_t i = 0; i < ofSpace.size(); ++i)
                isOther |= updateChip(chips[i], *ofSpace[i]);
            if (isOther)
                changed.insert(info.spaceID);
            hasChanged |= isOther;
        }
        std::erase_if(all, [&](auto& entry) {
            bool isGone = !present.contains(entry.first);
            if (isGone)
                changed.insert(entry.first);
            hasChanged |= isGone;
            return isGone;
        });
        return hasChanged;
    });
}

bool BarViewModel::updateChip(ChipData& chip, const TrackedWindow& window)
{
    bool hasChanged = assign(chip.id, window.windowID);
    hasChanged |= assign(chip.appName, window.appName);
    hasChanged |= assign(chip.bundleIdentifier, window.bundleIdentifier);
    hasChanged |= assign(chip.windowTitle, window.windowTitle);
    hasChanged |= assign(chip.icon, m_icons.icon(window));
    hasChanged |= assign(chip.isFocused, focusedWindowID.value() == window.windowID);
    hasChanged |= assign(chip.isMinimized, window.isMinimized);
    hasChanged |= assign(
        chip.badge, lookUp(m_badgeService.badgesByBundleID().value(), window.bundleIdentifier));
    hasChanged |= assign(chip.progress,
        lookUp(m_badgeService.progressByBundleID().value(), window.bundleIdentifier));
    hasChanged |= assign(chip.wantsAttention, wantsAttention(window));
    hasChanged |= assign(chip.hasNews, hasNews(window));
    return hasChanged;
}

/// They cost something only while they are wanted.
void BarViewModel::forgetOldTitles()
{
    m_titleNews.keepIf([this](WindowID id) {
        return m_settings.marksTitleNews() && m_windowStore.window(id) != nullptr;
    });
}

bool BarViewModel::hasNews(const TrackedWindow& window)
{
    return m_settings.marksTitleNews()
        && m_titleNews.update(
            window.windowID, window.windowTitle, focusedWindowID.value() == window.windowID);
}

void BarViewModel::updateSummaries(const std::set<SpaceID>& changed)
{
    auto& chips = chipsBySpace.value();
    summaries.update([&](Summaries& all) {
        bool hasChanged
            = std::erase_if(all, [&](auto& entry) { return !chips.contains(entry.first); }) > 0;
        for (auto space : changed) {
            auto found = chips.find(space);
            if (found == chips.end())
                continue;
            SpaceSummary summary;
            summary.windowCount = static_cast<int>(found->second.size());
            for (auto& chip : found->second) {
                summary.wantsAttention |= chip.wantsAttention;
                if (chip.bundleIdentifier)
                    summary.bundleIDs.insert(*chip.bundleIdentifier);
            }
            hasChanged |= assign(all[space], std::move(summary));
        }
        return hasChanged;
    });
}

/// With one screen there is nothing to choose.
void BarViewModel::updateFrames(const WindowsBySpace& windows, std::set<SpaceID>& changed)
{
    if (m_displays.screens().size() <= 1)
        return m_frames.clear();
    std::erase_if(m_frames, [&](auto& entry) { return !windows.contains(entry.first); });
    for (auto& [space, ofSpace] : windows) {
        std::vector<Rect> frames(ofSpace.size());
        std::ranges::transform(ofSpace, frames.begin(), [](auto* window) { return window->frame; });
        if (assign(m_frames[space], std::move(frames)))
            changed.insert(space);
    }
}

void BarViewModel::findBundlesWithAttentionWindows()
{
    m_bundlesWithAttentionWindows.clear();
    for (auto id : m_badgeService.attentionWindows().value()) {
        auto* window = m_windowStore.window(id);
        if (window && window->bundleIdentifier)
            m_bundlesWithAttentionWindows.insert(*window->bundleIdentifier);
    }
}

bool BarViewModel::wantsAttention(const TrackedWindow& window) const
{
    if (m_badgeService.attentionWindows().value().contains(window.windowID))
        return true;
    // Where a window with a chip asks, the others of its application do not.
    return window.bundleIdentifier
        && m_badgeService.attentionByBundleID().value().contains(*window.bundleIdentifier)
        && !m_bundlesWithAttentionWindows.contains(*window.bundleIdentifier);
}

// MARK: Items

void BarViewModel::updateItems(std::set<SpaceID>& changed)
{
    bool isGrouped = m_settings.groupWindowsByApp();
    bool regroups = std::exchange(m_isGrouped, isGrouped) != isGrouped;
    // The trace tells of each grouping, whether it changed anything or not.
    bool isAll = std::exchange(m_areItemsStale, false) || regroups || m_trace.isOn();
    displayItemsBySpace.update([&](ItemsBySpace& items) {
        auto& chips = chipsBySpace.value();
        bool hasChanged = std::erase_if(items, [&](auto& entry) {
            bool isGone = !chips.contains(entry.first);
            if (isGone)
                m_memory.didShow(entry.first, {});
            return isGone;
        }) > 0;
        for (auto& [space, chipsOfSpace] : chips) {
            if (!isAll && !changed.contains(space))
                continue;
            if (assign(items[space], makeItems(space, chipsOfSpace))) {
                m_memory.didShow(space, items[space]);
                changed.insert(space);
                hasChanged = true;
            }
        }
        return hasChanged;
    });
}

std::vector<DisplayItem> BarViewModel::makeItems(SpaceID space, const std::vector<ChipData>& chips)
{
    auto arranged = m_memory.arrange(space, chips);
    std::vector<DisplayItem> items;
    if (m_isGrouped)
        items = m_groups.group(space, arranged, focusedWindowID.value(), m_debugEventSequence);
    else
        std::ranges::transform(
            arranged, std::back_inserter(items), [](auto* chip) { return DisplayItem{*chip}; });
    return m_order.apply(space, std::move(items));
}

void BarViewModel::moveChip(
    const std::string& id, const std::optional<std::string>& before, SpaceID space)
{
    auto items = displayItemsBySpace.value().find(space);
    auto chips = chipsBySpace.value().find(space);
    if (items == displayItemsBySpace.value().end() || chips == chipsBySpace.value().end())
        return;
    auto canonical = [&](const std::string& given) {
        return canonicalDisplayItemID(given, items->second, chips->second);
    };
    auto moved = canonical(id);
    auto target = before ? std::optional{canonical(*before)} : std::nullopt;
    if (moved == target || !m_order.move(space, moved, target, items->second))
        return;
    m_memory.userDidMove(space);
    m_areItemsStale = true;
    refresh();
}

std::set<std::string> BarViewModel::bundleIDsWithWindows(SpaceID space) const
{
    auto found = summaries.value().find(space);
    return found == summaries.value().end() ? std::set<std::string>{} : found->second.bundleIDs;
}

std::vector<WindowID> BarViewModel::walkingOrder(SpaceID space, const GroupedChipData& group) const
{
    auto chips = inOrder(space, group.windowIDs);
    std::ranges::stable_partition(chips, [](auto* chip) { return !chip->isMinimized; });
    std::vector<WindowID> order;
    std::ranges::transform(chips, std::back_inserter(order), [](auto* chip) { return chip->id; });
    return order;
}

WindowID BarViewModel::nextWindow(SpaceID space, const GroupedChipData& group)
{
    auto focused = focusedWindowID.value();
    if (group.attentionWindow && group.attentionWindow != focused)
        return *group.attentionWindow;
    auto chips = inOrder(space, group.windowIDs);
    if (!focused || std::ranges::find(chips, *focused, &ChipData::id) == chips.end())
        return group.windowIDs.front();
    return m_walk.next(space, group.id, chips, *focused);
}

std::vector<const ChipData*> BarViewModel::inOrder(
    SpaceID space, const std::vector<WindowID>& ids) const
{
    auto chips = findChips(chipsBySpace.value(), space, ids);
    std::ranges::sort(chips, {},
        [&](auto* chip) { return std::pair{m_memory.placeOf(space, chip->id), chip->id}; });
    return chips;
}

// MARK: Stored applications

std::string BarViewModel::appName(const std::string& bundleIdentifier) const
{
    auto url = m_workspace.applicationURL(bundleIdentifier);
    if (!url)
        return bundleIdentifier;
    const auto bundle = m_bundles.describe(*url);
    if (bundle && bundle->displayName)
        return *bundle->displayName;
    if (bundle && bundle->name)
        return *bundle->name;
    return std::filesystem::path{url->path}.stem().string();
}

void BarViewModel::launchApp(const std::string& bundleID)
{
    if (auto url = m_workspace.applicationURL(bundleID))
        m_workspace.openApplication(*url);
}

// MARK: One screen of several

std::vector<DisplayItem> BarViewModel::displayItems(
    SpaceID space, std::optional<std::size_t> screenIndex) const
{
    auto found = displayItemsBySpace.value().find(space);
    if (found == displayItemsBySpace.value().end())
        return {};
    if (!screenIndex)
        return found->second;
    auto screens = m_displays.screens();
    if (screens.size() <= 1 || *screenIndex >= screens.size())
        return found->second;
    ScreenFilter filter{
        screens, *screenIndex, isOnDisplayOf(space, screens[*screenIndex], screens)};
    std::vector<DisplayItem> items;
    for (auto& item : found->second) {
        if (auto kept = onScreen(space, item, filter))
            items.push_back(std::move(*kept));
    }
    return items;
}

bool BarViewModel::isOnDisplayOf(
    SpaceID space, const Screen& screen, const std::vector<Screen>& screens) const
{
    auto info = std::ranges::find(spaces.value(), space, &SpaceWindows::Info::spaceID);
    auto home = info == spaces.value().end()
        ? std::nullopt
        : m_spaceWindows.screen(info->displayIdentifier, screens);
    if (!home)
        home = m_spaceWindows.screen("MAIN", screens);
    return screen == home.value_or(screens.front());
}

std::optional<DisplayItem> BarViewModel::onScreen(
    SpaceID space, const DisplayItem& item, const ScreenFilter& filter) const
{
    if (auto* single = std::get_if<ChipData>(&item))
        return isOnScreen(single->id, filter) ? std::optional{item} : std::nullopt;

    auto group = std::get<GroupedChipData>(item);
    std::erase_if(group.windowIDs, [&](WindowID id) { return !isOnScreen(id, filter); });
    if (group.windowIDs.empty())
        return std::nullopt;
    if (group.windowIDs.size() == 1) {
        auto* only = findChip(chipsBySpace.value(), space, group.windowIDs.front());
        return only ? std::optional<DisplayItem>{*only} : std::nullopt;
    }
    summarize(group, findChips(chipsBySpace.value(), space, group.windowIDs));
    return group;
}

bool BarViewModel::isOnScreen(WindowID id, const ScreenFilter& filter) const
{
    auto* window = m_windowStore.window(id);
    if (!window || window->isMinimized)
        return true;
    auto frame = window->frame.flipped(m_spaceWindows.primaryScreenMaxY(filter.screens));
    auto meets = [&](const Screen& screen) { return frame.intersects(screen.frame); };
    return meets(filter.screens[filter.index])
        || (filter.isHome && std::ranges::none_of(filter.screens, meets));
}

}
