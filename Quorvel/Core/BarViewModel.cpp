#include "Quorvel/Core/BarViewModel.h"

#include <algorithm>

#include "Quorvel/Platform/Displays.h"
#include "Quorvel/Platform/Workspace.h"
#include "Quorvel/Skylight/WindowStore.h"

namespace quorvel {

std::string groupKey(const TrackedWindow& window)
{
    return window.bundleIdentifier.value_or(window.appName);
}

BarViewModel::BarViewModel(WindowStore& windowStore, Dispatch& dispatch,
    Accessibility& accessibility, WindowServer& windowServer, Displays& displays,
    Workspace& workspace, const Trace& trace)
    : m_windowStore(windowStore)
    , m_dispatch(dispatch)
    , m_accessibility(accessibility)
    , m_windowServer(windowServer)
    , m_displays(displays)
    , m_workspace(workspace)
    , m_trace(trace)
    , m_spaceWindows(windowServer, displays)
    , m_calls(accessibility)
{
    m_iconChanges = workspace.iconDidChange.subscribe([this](const std::string& bundleIdentifier) {
        m_iconCache.erase(bundleIdentifier);
        refresh();
    });
    refresh();
}

void BarViewModel::refresh()
{
    ++m_debugEventSequence;
    auto connection = m_windowServer.mainConnection();
    spaces.set(m_spaceWindows.getSpaces(connection));
    activeSpaceID.set(m_windowServer.activeSpace(connection));

    std::optional<WindowID> effective;
    auto reason = resolveFocus(effective);
    m_trace.line("refresh focus store={} pendingIn={} effective={} reason={}",
        orNil(m_windowStore.focusedWindowID()), orNil(m_pendingFocusedWindowID), orNil(effective),
        reason);
    publish(effective);
}

void BarViewModel::publish(std::optional<WindowID> focused)
{
    focusedWindowID.set(focused);
    auto chips = makeChips();
    ItemsBySpace items;
    for (auto& [space, chipsOfSpace] : chips)
        items[space].assign(chipsOfSpace.begin(), chipsOfSpace.end());
    chipsBySpace.set(std::move(chips));
    displayItemsBySpace.set(std::move(items));
}

std::string BarViewModel::resolveFocus(std::optional<WindowID>& effective)
{
    auto store = m_windowStore.focusedWindowID();
    effective = store;
    auto drop = [&](std::string reason) {
        m_pendingFocusedWindowID.reset();
        m_pendingExpiry = {};
        return reason;
    };
    if (m_hasPendingExpired)
        return drop("pending-expired");
    if (!m_pendingFocusedWindowID)
        return "store(no-pending)";
    if (m_pendingFocusedWindowID == store)
        return drop("pending-confirmed");
    auto* pendingWindow = m_windowStore.window(*m_pendingFocusedWindowID);
    if (!pendingWindow)
        return drop("pending-abandoned-missing-window");

    auto* storeWindow = store ? m_windowStore.window(*store) : nullptr;
    auto pendingKey = groupKey(*pendingWindow);
    auto storeKey = storeWindow ? groupKey(*storeWindow) : "nil";
    auto keys = m_trace.isOn() ? fmt::format(" pk={} sk={}", pendingKey, storeKey) : std::string{};
    if (storeWindow && storeKey != pendingKey)
        return drop("pending-abandoned-different-app" + keys);
    effective = m_pendingFocusedWindowID;
    return "pending-preserved-same-app" + keys;
}

void BarViewModel::setPendingFocus(WindowID id)
{
    m_pendingFocusedWindowID = id;
    m_pendingExpiry = m_dispatch.main().after(kPendingFocusExpiry, [this] {
        m_hasPendingExpired = true;
        refresh();
        m_hasPendingExpired = false;
    });
}

BarViewModel::ChipsBySpace BarViewModel::makeChips()
{
    ChipsBySpace chips;
    for (auto& info : spaces.value()) {
        auto windows = m_windowStore.windows(info.spaceID);
        if (windows.empty())
            continue;
        auto& chipsOfSpace = chips[info.spaceID];
        chipsOfSpace.reserve(windows.size());
        for (auto* window : windows)
            chipsOfSpace.push_back(makeChip(*window));
    }
    return chips;
}

ChipData BarViewModel::makeChip(const TrackedWindow& window)
{
    return {
        .id = window.windowID,
        .appName = window.appName,
        .bundleIdentifier = window.bundleIdentifier,
        .windowTitle = window.windowTitle,
        .icon = icon(window),
        .isFocused = focusedWindowID.value() == window.windowID,
        .isMinimized = window.isMinimized,
    };
}

Image BarViewModel::icon(const TrackedWindow& window)
{
    auto& bundleIdentifier = window.bundleIdentifier;
    if (bundleIdentifier) {
        if (auto cached = m_iconCache.find(*bundleIdentifier); cached != m_iconCache.end())
            return cached->second;
        auto url = m_workspace.applicationURL(*bundleIdentifier);
        if (auto icon = url ? m_workspace.icon(*url) : nullptr)
            return m_iconCache[*bundleIdentifier] = icon;
    }
    if (auto icon = m_workspace.runningApplicationIcon(window.pid)) {
        if (bundleIdentifier)
            m_iconCache[*bundleIdentifier] = icon;
        return icon;
    }
    return m_workspace.genericApplicationIcon();
}

std::vector<DisplayItem> BarViewModel::displayItems(
    SpaceID space, std::optional<std::size_t> screenIndex) const
{
    auto found = displayItemsBySpace.value().find(space);
    if (found == displayItemsBySpace.value().end())
        return {};
    auto items = found->second;
    if (!screenIndex)
        return items;
    auto screens = m_displays.screens();
    if (screens.size() > 1 && *screenIndex < screens.size())
        std::erase_if(items, [&](auto& item) { return !isOnScreen(item, screens, *screenIndex); });
    return items;
}

bool BarViewModel::isOnScreen(
    const DisplayItem& item, const std::vector<Screen>& screens, std::size_t index) const
{
    auto* window = m_windowStore.window(std::get<ChipData>(item).id);
    if (!window || window->isMinimized)
        return true;
    return window->frame.flipped(screens.front().frame.height).intersects(screens[index].frame);
}

}
