// What a click does to a window: activate, minimise, close.

#include "Quorvel/Core/BarViewModel.h"

#include <algorithm>

#include "Quorvel/Core/BadgeService.h"
#include "Quorvel/Platform/Workspace.h"
#include "Quorvel/Skylight/Minimal.h"
#include "Quorvel/Skylight/WindowStore.h"

namespace quorvel {

namespace {

std::string joined(const std::set<SpaceID>& spaces)
{
    std::string text;
    for (auto space : spaces) {
        if (!text.empty())
            text += ',';
        text += std::to_string(raw(space));
    }
    return text;
}

int code(AXError error)
{
    return static_cast<int>(error);
}

}

void BarViewModel::activateWindow(WindowID id, FocusBeforeActivation focusBefore)
{
    auto* window = m_windowStore.window(id);
    if (!window)
        return;
    AXCalls::Scan hungOnlyOnce(m_calls);
    m_activationRetry = {};
    m_lateRequests.beginActivation();
    const Activation click{m_calls.application(window->pid), id, window->pid, window->isMinimized,
        ++m_debugEventSequence};
    if (m_trace.isOn()) {
        m_trace.line("activateWindow begin id={} pid={} key={} spaces={} storeFocused={} "
                     "pendingBefore={} seq={}",
            raw(id), raw(window->pid), sanitizeLogField(groupKey(*window)),
            joined(window->spaceIDs), orNil(m_windowStore.focusedWindowID()),
            orNil(m_pendingFocusedWindowID), click.sequence);
    }
    preferInItsGroups(*window);
    if (auto& bundleID = window->bundleIdentifier) {
        if (m_trace.isOn())
            m_trace.line("activateWindow clearAttention bundleID={} seq={}",
                sanitizeLogField(*bundleID), click.sequence);
        m_badgeService.clearAttention(*bundleID, m_windowStore.windowIDs(*bundleID));
    }
    setPendingFocus(id);
    if (focusBefore == FocusBeforeActivation::yes)
        focusThroughApplication(click);
    if (m_workspace.runningApplication(click.pid))
        requestApplicationActivation(click);
    if (auto element = m_calls.window(click.pid, click.application, id)) {
        applyFocusAndRaise(click, *element);
    } else {
        m_trace.line("activateWindow AX resolve failed, scheduling retry id={} pid={} seq={}",
            raw(id), raw(click.pid), click.sequence);
        m_activationRetry
            = m_dispatch.main().after(kActivationRetry, [this, click] { retryActivation(click); });
    }
    // Lit at once; a refresh would ask the store, which cannot know yet.
    publish(id);
    m_trace.line("activateWindow end id={} focusedWindowID={} seq={}", raw(id),
        orNil(focusedWindowID.value()), click.sequence);
}

void BarViewModel::preferInItsGroups(const TrackedWindow& window)
{
    for (auto space : window.spaceIDs) {
        if (raw(space) != 0)
            m_groups.prefer(space, groupKey(window), window.windowID);
    }
    m_areItemsStale = true;
}

void BarViewModel::focusThroughApplication(const Activation& click)
{
    auto element = m_calls.window(click.pid, click.application, click.id);
    if (!element) {
        m_trace.line("activateWindow preactivation AX resolve failed id={} pid={} seq={}",
            raw(click.id), raw(click.pid), click.sequence);
        return;
    }
    auto focused = m_calls.setAttribute(click.pid, click.application, ax::focusedWindow, *element);
    auto main = m_calls.setAttribute(click.pid, click.application, ax::mainWindow, *element);
    m_trace.line(
        "activateWindow AX app focused/main sent id={} focusedWindow={} mainWindow={} seq={}",
        raw(click.id), code(focused), code(main), click.sequence);
    auto now = click;
    auto* window = m_windowStore.window(click.id);
    now.isMinimized = window && window->isMinimized;
    applyFocusAndRaise(now, *element);
}

void BarViewModel::applyFocusAndRaise(const Activation& click, const AXElement& element)
{
    auto unminimize = click.isMinimized
        ? m_calls.setAttribute(click.pid, element, ax::minimized, false)
        : AXError::success;
    auto main = m_calls.setAttribute(click.pid, element, ax::main, true);
    auto focus = m_calls.setAttribute(click.pid, element, ax::focused, true);
    auto raise = m_calls.performAction(click.pid, element, ax::raiseAction);
    m_trace.line(
        "activateWindow AX focus/raise sent id={} unminimize={} main={} focus={} raise={} seq={}",
        raw(click.id), code(unminimize), code(main), code(focus), code(raise), click.sequence);
}

void BarViewModel::requestApplicationActivation(const Activation& click)
{
    auto pid = click.pid;
    auto frontmost = [this] {
        auto front = m_workspace.frontmostApplication();
        return front ? raw(*front) : -1;
    };
    bool wasSelfActive = m_workspace.isSelfActive();
    int frontmostBefore = m_trace.isOn() ? frontmost() : -1;
    bool isAccepted = m_workspace.activateCooperatively(pid);
    m_trace.line("activateWindow app.activate mode=cooperative pid={} accepted={} "
                 "selfActiveBefore={} frontmostBefore={} seq={}",
        raw(pid), isAccepted, wasSelfActive, frontmostBefore, click.sequence);
    if (isAccepted)
        return;
    // A yielded activation counts only from the active application, so become that first.
    if (!wasSelfActive)
        m_workspace.activateSelf();
    isAccepted = m_workspace.activateDirectly(pid);
    m_trace.line("activateWindow app.activate mode={} pid={} accepted={} selfActiveAfter={} "
                 "frontmostAfter={} seq={}",
        wasSelfActive ? "direct" : "direct-after-self-activate", raw(pid), isAccepted,
        m_workspace.isSelfActive(), frontmost(), click.sequence);
}

void BarViewModel::retryActivation(const Activation& click)
{
    AXCalls::Scan hungOnlyOnce(m_calls);
    m_lateRequests.continueActivation();
    if (auto element = m_calls.window(click.pid, click.application, click.id)) {
        applyFocusAndRaise(click, *element);
        return;
    }
    m_trace.line("activateWindow failed resolve AX window after retry id={} pid={} seq={}",
        raw(click.id), raw(click.pid), click.sequence);
    m_windowStore.scheduleDeferredScan(click.pid);
    if (m_pendingFocusedWindowID == click.id)
        dropPendingFocus();
    // The chip was lit when the click came; nothing else would darken it.
    refresh();
}

bool BarViewModel::focusWindowWithAXOnly(WindowID id, std::string_view context)
{
    auto* window = m_windowStore.window(id);
    if (!window)
        return false;
    AXCalls::Scan hungOnlyOnce(m_calls);
    m_activationRetry = {};
    m_lateRequests.beginActivation();
    auto pid = window->pid;
    bool isMinimized = window->isMinimized;
    auto application = m_calls.application(pid);
    if (m_trace.isOn()) {
        m_trace.line("AX-only focus begin context={} id={} pid={} app={}", context, raw(id),
            raw(pid), sanitizeLogField(window->appName));
    }
    setPendingFocus(id);
    auto element = m_calls.window(pid, application, id);
    if (!element) {
        m_trace.line("AX-only focus failed resolve AX window context={} id={} pid={}", context,
            raw(id), raw(pid));
        m_windowStore.scheduleDeferredScan(pid);
        return false;
    }
    auto frontmost = m_calls.setAttribute(pid, application, ax::frontmost, true);
    auto focusedWindow = m_calls.setAttribute(pid, application, ax::focusedWindow, *element);
    auto mainWindow = m_calls.setAttribute(pid, application, ax::mainWindow, *element);
    auto unminimize = isMinimized ? m_calls.setAttribute(pid, *element, ax::minimized, false)
                                  : AXError::success;
    auto main = m_calls.setAttribute(pid, *element, ax::main, true);
    auto focused = m_calls.setAttribute(pid, *element, ax::focused, true);
    auto raise = m_calls.performAction(pid, *element, ax::raiseAction);
    publish(id);
    m_trace.line("AX-only focus end context={} id={} frontmost={} focusedWindow={} mainWindow={} "
                 "unminimize={} main={} focused={} raise={}",
        context, raw(id), code(frontmost), code(focusedWindow), code(mainWindow), code(unminimize),
        code(main), code(focused), code(raise));
    // Whether the application came to the front shows elsewhere.
    auto counting = {focusedWindow, mainWindow, unminimize, main, focused, raise};
    return std::ranges::all_of(counting, [](auto error) { return error == AXError::success; });
}

std::optional<BarViewModel::ElementOfProcess> BarViewModel::prepareToMinimize(WindowID id)
{
    auto* window = m_windowStore.window(id);
    if (!window)
        return {};
    auto pid = window->pid;
    m_trace.line("minimizeWindow begin id={} pid={}", raw(id), raw(pid));
    willMinimizeWindows.emit({id});
    if (m_pendingFocusedWindowID == id) {
        dropPendingFocus();
        m_activationRetry = {};
    }
    if (focusedWindowID.value() == id)
        publish(std::nullopt);
    auto element = m_calls.window(pid, m_calls.application(pid), id);
    return element ? std::optional{ElementOfProcess{pid, *element}} : std::nullopt;
}

std::optional<BarViewModel::ElementOfProcess> BarViewModel::closeButtonOf(WindowID id)
{
    auto* window = m_windowStore.window(id);
    if (!window)
        return {};
    auto pid = window->pid;
    auto element = m_calls.window(pid, m_calls.application(pid), id);
    auto button = element ? m_calls.read<AXElement>(pid, *element, ax::closeButton) : std::nullopt;
    if (!button)
        return {};
    m_calls.setMessagingTimeout(*button);
    return ElementOfProcess{pid, *button};
}

// All windows are looked for first: an application that is busy with one of them does not answer.

void BarViewModel::minimizeWindows(const std::vector<WindowID>& ids)
{
    AXCalls::Scan hungOnlyOnce(m_calls);
    m_lateRequests.beginOther();
    std::vector<ElementOfProcess> found;
    for (auto id : ids) {
        if (auto window = prepareToMinimize(id))
            found.push_back(std::move(*window));
    }
    for (auto& [pid, window] : found)
        m_calls.setAttribute(pid, window, ax::minimized, true);
}

void BarViewModel::closeWindows(const std::vector<WindowID>& ids)
{
    AXCalls::Scan hungOnlyOnce(m_calls);
    m_lateRequests.beginOther();
    std::vector<ElementOfProcess> found;
    for (auto id : ids) {
        if (auto button = closeButtonOf(id))
            found.push_back(std::move(*button));
    }
    for (auto& [pid, button] : found)
        m_calls.performAction(pid, button, ax::pressAction);
}

void BarViewModel::quitApplicationOf(WindowID id)
{
    if (auto* window = m_windowStore.window(id))
        m_workspace.requestTermination(window->pid);
}

}
