#pragma once

#include <functional>
#include <optional>
#include <vector>

#include "Quorvel/Core/DesktopShortcuts.h"
#include "Quorvel/Platform/Dispatch.h"
#include "Quorvel/Platform/Surfaces.h"
#include "Quorvel/Platform/Trace.h"
#include "Quorvel/Skylight/SpaceWindows.h"

namespace quorvel {

class Bar;
class BarPanels;
class BarViewModel;
class UserSettings;
class WindowStore;
class Workspace;
struct Platform;
struct TrackedWindow;

enum class Direction { left, right };

/// Takes the user to another space: by the system's own keys where there are any, else by letting a
/// panel of that space take the keyboard, since the system follows it. Main thread.
class SpaceNavigation {
public:
    /// One notch of a wheel, or one swipe with all its events, is one step.
    static constexpr Duration kScrollLock = seconds(0.38);
    /// How long a switch may take before it is taken as refused.
    static constexpr Duration kSwitchPatience = seconds(1);

    SpaceNavigation(
        const Platform&, WindowStore&, BarViewModel&, const UserSettings&, const BarPanels&);

    /// Another space is about to be shown: the last chance to take pictures of this one.
    std::function<void()> onWillSwitch;
    /// Scrolling may switch spaces again.
    std::function<void()> onScrollUnlocked;

    /// The direction that a step upwards or downwards leads in; absent while scrolling is locked.
    std::optional<Direction> scrollDirection(const ScrollEvent&) const;
    /// To the next space of the same display; does nothing at either end.
    void switchToAdjacentSpace(Direction, SpaceID from);
    /// Afterwards returns the focus to this application, if the switch has taken it.
    void switchToSpace(SpaceID, std::optional<ProcessID> yieldingBack = {});
    /// Gives the window the focus, after a switch to its space if that is not shown.
    void goToWindow(WindowID);
    /// Desktops as the system counts them, from 1: the ordinary spaces of all displays.
    std::optional<int> missionControlDesktopNumber(SpaceID) const;
    std::optional<SymbolicHotKey> desktopSwitchShortcut(SpaceID);
    bool isCurrent(SpaceID) const;
    /// The space that this space's display shows now.
    SpaceID currentSpaceBeside(SpaceID) const;

    /// A display shows another space.
    void spaceDidChange(const std::vector<SpaceID>& shown);
    /// Undoes the changes to the system: the program may end without destructors.
    void end() { m_shortcuts.restore(); }
    bool isScrollSwitchLocked() const { return m_scrollUnlockWork.isPending(); }

private:
    struct PendingFullscreenAXActivation {
        WindowID windowID{};
        SpaceID targetSpaceID{};
    };

    struct PendingWindow {
        WindowID windowID{};
        SpaceID spaceID{};
    };

    const SpaceWindows::Info* info(SpaceID) const;
    void activatePendingWindow();
    void lockScrollSwitching();
    void switchToFullscreenSpace(SpaceID);
    void completeFullscreenProxySwitch(WindowID);
    /// The system follows the panel to its space.
    void becomeKey(Bar&, std::optional<ProcessID> previousApp);
    void handlePostSwitchYield(const std::vector<SpaceID>& shown);
    std::optional<ProcessID> applicationToYieldTo(
        ProcessID previous, const std::vector<SpaceID>& shown) const;
    const TrackedWindow* frontWindow(SpaceID) const;

    Dispatch& m_dispatch;
    WindowServer& m_windowServer;
    Workspace& m_workspace;
    const Trace& m_trace;
    SpaceWindows m_spaceWindows;
    DesktopShortcuts m_shortcuts;
    WindowStore& m_windowStore;
    BarViewModel& m_viewModel;
    const UserSettings& m_settings;
    const BarPanels& m_panels;
    SpaceID m_targetSpaceID{};
    std::optional<ProcessID> m_pendingPreviousApp;
    std::optional<PendingFullscreenAXActivation> m_pendingFullscreenAXActivation;
    std::optional<PendingWindow> m_pendingWindow; ///< to be activated once its space is shown
    Instant m_switchStartTime;
    WorkItem m_scrollUnlockWork; ///< while pending, scrolling is ignored
    WorkItem m_yieldWork;
    WorkItem m_pendingWindowPatience;
    WorkItem m_pendingFullscreenProxyCleanupWork;
};

}
