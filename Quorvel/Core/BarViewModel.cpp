#include "Quorvel/Core/BarViewModel.h"

#include <algorithm>
#include <utility>

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

    auto focus = resolveFocus();
    m_trace.line("refresh focus store={} pendingIn={} effective={} reason={}{}",
        orNil(m_windowStore.focusedWindowID()), orNil(m_pendingFocusedWindowID),
        orNil(focus.effective), focus.reason, focus.keys);
    publish(focus.effective);
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
    didRefresh.emit();
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
        keys
            = fmt::format(" pk={} sk={}", groupKey(*pending), focused ? groupKey(*focused) : "nil");
    if (focused && groupKey(*focused) != groupKey(*pending))
        return follow("pending-abandoned-different-app", std::move(keys));
    return {m_pendingFocusedWindowID, "pending-preserved-same-app", std::move(keys)};
}

void BarViewModel::dropPendingFocus()
{
    m_pendingFocusedWindowID.reset();
    m_pendingExpiry = {};
}

void BarViewModel::setPendingFocus(WindowID id)
{
    m_pendingFocusedWindowID = id;
    m_pendingExpiry = m_dispatch.main().after(kPendingFocusExpiry, [this] {
        m_hasPendingExpired = true;
        refresh();
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
    Image found;
    if (!window.bundleIdentifier) {
        found = findIcon(window);
    } else if (auto known = m_iconCache.find(*window.bundleIdentifier);
               known != m_iconCache.end()) {
        found = known->second;
    } else {
        // "None" is remembered too: to look for an icon may mean to ask the window.
        found = m_iconCache[*window.bundleIdentifier] = findIcon(window);
    }
    return found ? found : m_workspace.genericApplicationIcon();
}

Image BarViewModel::findIcon(const TrackedWindow& window)
{
    if (window.bundleIdentifier) {
        auto url = m_workspace.applicationURL(*window.bundleIdentifier);
        if (auto icon = url ? m_workspace.icon(*url) : nullptr)
            return icon;
    }
    return m_workspace.runningApplicationIcon(window.pid);
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
