#include "Quorvel/Core/SpaceNavigation.h"

#include <algorithm>
#include <utility>

#include "Quorvel/Core/BarPanels.h"
#include "Quorvel/Core/BarViewModel.h"
#include "Quorvel/Core/UserSettings.h"
#include "Quorvel/Platform/Platform.h"
#include "Quorvel/Platform/Workspace.h"
#include "Quorvel/Skylight/WindowStore.h"

namespace quorvel {

SpaceNavigation::SpaceNavigation(const Platform& platform, WindowStore& windowStore,
    BarViewModel& viewModel, const UserSettings& settings, const BarPanels& panels)
    : m_dispatch(platform.dispatch)
    , m_windowServer(platform.windowServer)
    , m_workspace(platform.workspace)
    , m_trace(platform.trace)
    , m_spaceWindows(platform.windowServer, platform.displays)
    , m_shortcuts(platform.windowServer)
    , m_windowStore(windowStore)
    , m_viewModel(viewModel)
    , m_settings(settings)
    , m_panels(panels)
{
}

// MARK: Which space

const SpaceWindows::Info* SpaceNavigation::info(SpaceID space) const
{
    auto& spaces = m_viewModel.spaces.value();
    auto found = std::ranges::find(spaces, space, &SpaceWindows::Info::spaceID);
    return found == spaces.end() ? nullptr : &*found;
}

bool SpaceNavigation::isCurrent(SpaceID space) const
{
    return isShown(space, m_spaceWindows.getActiveSpaceIDs());
}

SpaceID SpaceNavigation::currentSpaceBeside(SpaceID space) const
{
    auto* beside = info(space);
    for (auto active : m_spaceWindows.getActiveSpaceIDs()) {
        auto* candidate = info(active);
        if (beside && candidate && candidate->displayIndex == beside->displayIndex)
            return active;
    }
    return space;
}

std::optional<int> SpaceNavigation::missionControlDesktopNumber(SpaceID space) const
{
    int number = 0;
    for (auto& candidate : m_viewModel.spaces.value()) {
        if (candidate.spaceType == kFullscreenSpaceType)
            continue;
        ++number;
        if (candidate.spaceID == space)
            return number;
    }
    return {};
}

std::optional<SymbolicHotKey> SpaceNavigation::desktopSwitchShortcut(SpaceID space)
{
    auto number = missionControlDesktopNumber(space);
    return number ? m_shortcuts.desktopSwitchShortcut(*number) : std::nullopt;
}

// MARK: Scrolling

std::optional<Direction> SpaceNavigation::scrollDirection(const ScrollEvent& event) const
{
    if (isScrollSwitchLocked() || event.deltaY == 0)
        return {};
    bool base = event.isDirectionInverted ? event.deltaY > 0 : event.deltaY < 0;
    bool goesRight = m_settings.scrollUpSpaceSwitch() == SpaceScrollUpBehavior::left ? base : !base;
    return goesRight ? Direction::right : Direction::left;
}

void SpaceNavigation::lockScrollSwitching()
{
    m_scrollUnlockWork = m_dispatch.main().after(kScrollLock, [this] {
        m_scrollUnlockWork = {};
        if (onScrollUnlocked)
            onScrollUnlocked();
    });
}

void SpaceNavigation::switchToAdjacentSpace(Direction direction, SpaceID from)
{
    auto* start = info(from);
    if (!start)
        return;
    auto& spaces = m_viewModel.spaces.value();
    auto step = direction == Direction::right ? 1 : -1;
    auto neighbour = start - spaces.data() + step;
    if (neighbour < 0 || neighbour >= static_cast<std::ptrdiff_t>(spaces.size()))
        return;
    auto& target = spaces[static_cast<std::size_t>(neighbour)];
    if (target.displayIndex == start->displayIndex)
        switchToSpace(target.spaceID);
}

// MARK: Switching

void SpaceNavigation::switchToSpace(SpaceID target, std::optional<ProcessID> yieldingBack)
{
    auto* space = info(target);
    if (!space || isCurrent(target))
        return;
    if (onWillSwitch)
        onWillSwitch();
    if (space->spaceType == kFullscreenSpaceType)
        return switchToFullscreenSpace(target);
    auto* panel = m_panels.panel(target);
    if (!panel)
        return;
    lockScrollSwitching();
    m_switchStartTime = m_dispatch.now();
    m_targetSpaceID = target;
    m_pendingFullscreenAXActivation.reset();
    if (auto keys = desktopSwitchShortcut(target)) {
        m_shortcuts.press(*keys);
        m_pendingPreviousApp = yieldingBack;
        return;
    }
    becomeKey(*panel, yieldingBack);
}

void SpaceNavigation::goToWindow(WindowID id)
{
    auto* window = m_windowStore.window(id);
    if (!window)
        return;
    auto& spaces = window->spaceIDs;
    m_pendingWindow = {id, spaces.empty() ? SpaceID{} : *spaces.begin()};
    auto shown = m_spaceWindows.getActiveSpaceIDs();
    bool isHere
        = std::ranges::any_of(spaces, [&shown](SpaceID space) { return isShown(space, shown); });
    if (isHere || !info(m_pendingWindow->spaceID))
        return activatePendingWindow();
    // Where the switch is refused, the application is asked all the same.
    m_pendingWindowPatience
        = m_dispatch.main().after(kSwitchPatience, [this] { activatePendingWindow(); });
    switchToSpace(m_pendingWindow->spaceID);
}

void SpaceNavigation::activatePendingWindow()
{
    m_pendingWindowPatience.cancel();
    if (auto pending = std::exchange(m_pendingWindow, std::nullopt))
        m_viewModel.activateWindow(pending->windowID, BarViewModel::FocusBeforeActivation::no);
}

void SpaceNavigation::becomeKey(Bar& panel, std::optional<ProcessID> previousApp)
{
    m_pendingPreviousApp = previousApp ? previousApp : m_workspace.frontmostApplication();
    panel.setAllowBecomeKey(true);
    m_workspace.activateSelf();
    panel.surface().makeKeyAndOrderFront();
    panel.setAllowBecomeKey(false);
    m_yieldWork = m_dispatch.main().after(
        kSwitchPatience, [this] { handlePostSwitchYield(m_spaceWindows.getActiveSpaceIDs()); });
}

void SpaceNavigation::spaceDidChange(const std::vector<SpaceID>& shown)
{
    if (!isShown(m_targetSpaceID, shown))
        return;
    if (m_trace.isOn() && m_switchStartTime != Instant{}) {
        m_trace.line("space switch done space={} seconds={:.3f}", raw(m_targetSpaceID),
            std::chrono::duration<double>(m_dispatch.now() - m_switchStartTime).count());
        m_switchStartTime = {};
    }
    if (m_pendingFullscreenAXActivation
        && m_pendingFullscreenAXActivation->targetSpaceID == m_targetSpaceID)
        completeFullscreenProxySwitch(m_pendingFullscreenAXActivation->windowID);
    if (m_pendingWindow && m_pendingWindow->spaceID == m_targetSpaceID) {
        m_pendingPreviousApp.reset(); // the window is to have the focus, not what had it before
        activatePendingWindow();
    }
    handlePostSwitchYield(shown);
}

// MARK: Full-screen spaces

void SpaceNavigation::switchToFullscreenSpace(SpaceID target)
{
    auto* proxy = m_panels.fullscreenPanel(target);
    if (!proxy)
        return;
    lockScrollSwitching();
    m_switchStartTime = m_dispatch.now();
    m_targetSpaceID = target;
    m_pendingFullscreenAXActivation.reset();
    // It may be the first that is heard of the window.
    if (auto window = m_windowStore.trackSoleWindow(target))
        m_pendingFullscreenAXActivation = {*window, target};
    becomeKey(*proxy, {});
    m_pendingFullscreenProxyCleanupWork = m_dispatch.main().after(
        kSwitchPatience, [this] { m_pendingFullscreenAXActivation.reset(); });
}

/// Through accessibility only: activating the application might lead to its windows elsewhere.
void SpaceNavigation::completeFullscreenProxySwitch(WindowID window)
{
    m_pendingFullscreenProxyCleanupWork.cancel();
    m_pendingFullscreenAXActivation.reset();
    m_viewModel.focusWindowWithAXOnly(window, "fullscreen-proxy");
}

// MARK: Afterwards

void SpaceNavigation::handlePostSwitchYield(const std::vector<SpaceID>& shown)
{
    m_yieldWork.cancel();
    auto previous = std::exchange(m_pendingPreviousApp, std::nullopt);
    // The window manager, or the user, has chosen already.
    if (!previous || !m_workspace.isSelfActive())
        return;
    if (auto application = applicationToYieldTo(*previous, shown)) {
        if (!m_workspace.activateCooperatively(*application))
            m_workspace.activateDirectly(*application);
    }
}

/// An application that has windows, but none here, would take the user back to one of them.
std::optional<ProcessID> SpaceNavigation::applicationToYieldTo(
    ProcessID previous, const std::vector<SpaceID>& shown) const
{
    bool hasWindows = false;
    for (auto& [id, window] : m_windowStore.windows()) {
        if (window.pid != previous)
            continue;
        hasWindows = true;
        bool isHere = std::ranges::any_of(
            window.spaceIDs, [&shown](SpaceID space) { return isShown(space, shown); });
        if (isHere && !window.isMinimized)
            return previous;
    }
    if (auto* front = frontWindow(m_targetSpaceID))
        return front->pid;
    return hasWindows ? std::nullopt : std::optional{previous};
}

const TrackedWindow* SpaceNavigation::frontWindow(SpaceID space) const
{
    const TrackedWindow* front = nullptr;
    m_windowServer.enumerateWindows(
        kWindowListExcludeDesktopElements, [&](const CGWindowInfo& entry) {
            auto* window = entry.windowNumber ? m_windowStore.window(*entry.windowNumber) : nullptr;
            bool isThere = window && !window->isMinimized
                && std::ranges::find(window->spaceIDs, space) != window->spaceIDs.end();
            if (!front && isThere)
                front = window;
        });
    return front;
}

}
