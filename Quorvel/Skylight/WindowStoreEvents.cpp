// What one accessibility notification does to the windows and the focus.

#include <algorithm>

#include "Quorvel/Platform/Displays.h"
#include "Quorvel/Platform/Translation.h"
#include "Quorvel/Platform/Workspace.h"
#include "Quorvel/Skylight/WindowStore.h"

namespace quorvel {

void WindowStore::handleAXEvent(const AXWindowEvent& announced)
{
    ++m_debugEventSequence;
    AXCalls::Scan hungOnlyOnce(m_scanner.calls());
    auto event = announced;
    m_scanner.calls().setMessagingTimeout(event.element);
    if (!event.windowID && event.notification != ax::focusedWindowChanged)
        event.windowID = m_scanner.calls().windowID(event.pid, event.element);
    auto& name = event.notification;
    if (name == ax::windowCreated)
        handleWindowCreated(event);
    else if (name == ax::elementDestroyed)
        handleDestroyed(event);
    else if (name == ax::titleChanged)
        handleTitleChanged(event);
    else if (name == ax::windowResized || name == ax::windowMoved)
        handleFrameChanged(event);
    else if (name == ax::windowMiniaturized)
        handleMinimized(event, true);
    else if (name == ax::windowDeminiaturized)
        handleMinimized(event, false);
    else if (name == ax::focusedWindowChanged)
        handleFocusedWindowChanged(event);
}

void WindowStore::scanForUntracked(ProcessID pid)
{
    auto application = m_workspace.runningApplication(pid);
    if (application && application->activationPolicy == ActivationPolicy::regular)
        scheduleFreshDeferredScan(pid);
}

void WindowStore::handleWindowCreated(const AXWindowEvent& event)
{
    auto metadata = m_scanner.readMetadata(event.pid, event.element);
    // Half an answer would make a window of another kind of it.
    const bool isWhole = !m_scanner.calls().hasTimedOut(event.pid);
    if (event.windowID && isWhole)
        admitCreatedWindow(event, *event.windowID, metadata);
    // Announced before the window server lists it, or while nobody knows its space.
    if ((!isWhole || isDockEligibleAXWindow(metadata)) && !tracked(event.windowID))
        scanForUntracked(event.pid);
    ensureLifecycleMonitoringForWindowActivity(event.pid);
}

void WindowStore::admitCreatedWindow(
    const AXWindowEvent& event, WindowID id, const AXWindowMetadata& metadata)
{
    if (!isDockEligibleAXWindow(metadata)) {
        if (m_trace.isOn())
            m_trace.line("ignored-non-standard-ax-window role={} seq={}",
                sanitizeLogField(metadata.role), m_debugEventSequence);
        return;
    }
    auto moment = m_scanner.lookAt({event.pid});
    auto& windows = moment.windowsByOwner[event.pid];
    auto found = std::find_if(windows.begin(), windows.end(),
        [&](const CGWindowInfo& window) { return window.windowNumber == id; });
    if (found == windows.end() || windowFilter(*found) != WindowFilter::passed
        || !moment.eligiblePIDs.contains(event.pid))
        return;
    auto application = m_workspace.runningApplication(event.pid);
    ScannedWindowCandidate candidate{
        .appName = found->ownerName.value_or(tr("Unknown")),
        .bundleID = application ? application->bundleIdentifier : std::nullopt,
        .title = metadata.title,
        .frame = *found->bounds,
        .spaces = moment.spaces.windows.spaces(id),
        .unlistedSpaces = moment.spaces.windows.unlistedSpaces(),
        .isAXConfirmed = true,
        .isMinimized = metadata.isMinimized,
    };
    if (auto* window = tracked(id)) {
        m_reconcileStateByWindowID.insert_or_assign(id, Active{});
        if (updateTracked(*window, event.pid, candidate))
            onChange();
        return;
    }
    if (candidate.spaces.empty())
        candidate.spaces = m_scanner.querySpaces(id);
    if (candidate.spaces.empty())
        return;
    track(id, event.pid, candidate);
    onChange();
}

void WindowStore::handleDestroyed(const AXWindowEvent& event)
{
    auto* window = tracked(event.windowID);
    if (!window)
        return;
    if (window->pid != event.pid) {
        // It has gone to another process, which announced it before this one let it go.
        scheduleDeferredScan(window->pid);
        return;
    }
    forget(*event.windowID);
    onChange();
}

void WindowStore::handleTitleChanged(const AXWindowEvent& event)
{
    auto* window = tracked(event.windowID);
    if (!window) {
        scheduleDeferredScan(event.pid);
        return;
    }
    auto title = m_scanner.readTitle(event.pid, event.element);
    if (!title) {
        // Too busy to say; its next title may be long in coming.
        scheduleFreshDeferredScan(event.pid);
        return;
    }
    if (*title == window->windowTitle)
        return;
    window->windowTitle = std::move(*title);
    onChange();
}

void WindowStore::handleFrameChanged(const AXWindowEvent& event)
{
    auto* window = tracked(event.windowID);
    if (!window) {
        // It may have grown large enough for the bar; where it lies keeps none off.
        if (event.notification == ax::windowResized)
            scanForUntracked(event.pid);
        return;
    }
    auto frame = m_scanner.readFrame(event.pid, event.element);
    if (!frame) {
        scheduleFreshDeferredScan(event.pid);
        return;
    }
    if (!isLargeEnough(*frame))
        scheduleFreshDeferredScan(event.pid);
    auto before = window->frame;
    if (*frame != before) {
        window->frame = *frame;
        onChange();
    }
    bool hasCrossed = m_crossed.erase(*event.windowID) > 0;
    if (hasCrossed || areOnDifferentScreens(before, *frame))
        scheduleCrossScreenSpacesRefresh();
}

bool WindowStore::areOnDifferentScreens(const Rect& before, const Rect& after) const
{
    return indexOfScreenContaining(before) != indexOfScreenContaining(after);
}

std::optional<std::size_t> WindowStore::indexOfScreenContaining(const Rect& windowFrame) const
{
    auto screens = m_displays.screens();
    auto flipped = windowFrame.flipped(m_scanner.spaceWindows().primaryScreenMaxY(screens));
    auto found = std::find_if(screens.begin(), screens.end(),
        [&](const Screen& screen) { return screen.frame.contains(flipped.centre()); });
    if (found == screens.end())
        return {};
    return static_cast<std::size_t>(found - screens.begin());
}

void WindowStore::handleMinimized(const AXWindowEvent& event, bool isMinimized)
{
    auto* window = tracked(event.windowID);
    // Some windows belong on the bar only while they are minimised.
    if (!window)
        scanForUntracked(event.pid);
    else if (!isMinimized
        && !isDockEligibleAXWindow(m_scanner.readMetadata(event.pid, event.element)))
        scheduleFreshDeferredScan(event.pid);
    bool hasChanged = window && window->isMinimized != isMinimized;
    if (window)
        window->isMinimized = isMinimized;
    if (isMinimized && event.windowID && m_focusedWindowID == event.windowID) {
        m_focusedWindowID.reset();
        hasChanged = true;
    }
    if (hasChanged)
        onChange();
}

void WindowStore::handleFocusedWindowChanged(const AXWindowEvent& event)
{
    if (m_workspace.frontmostApplication() != event.pid) {
        m_trace.line("focusedChanged ignored pid={} seq={}", raw(event.pid), m_debugEventSequence);
        return;
    }
    if (event.windowID) {
        m_trace.line("focusedChanged direct pid={} windowID={} seq={}", raw(event.pid),
            raw(*event.windowID), m_debugEventSequence);
        setFocusedWindow(*event.windowID);
        // A window that has the focus and no chip may have been missed.
        if (!tracked(event.windowID))
            scanForUntracked(event.pid);
        return;
    }
    auto& calls = m_scanner.calls();
    auto reply = calls.copyAttribute(event.pid, calls.application(event.pid), ax::focusedWindow);
    auto* element = reply.get<AXElement>();
    if (element)
        calls.setMessagingTimeout(*element);
    auto id = element ? calls.windowID(event.pid, *element) : std::nullopt;
    if (!id) {
        m_trace.line("focusedChanged query failed pid={} err={} seq={}", raw(event.pid),
            static_cast<int>(reply.error), m_debugEventSequence);
        return;
    }
    m_trace.line("focusedChanged queried pid={} windowID={} seq={}", raw(event.pid), raw(*id),
        m_debugEventSequence);
    setFocusedWindow(*id);
    if (!tracked(id))
        scanForUntracked(event.pid);
}

}
