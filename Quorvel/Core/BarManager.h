#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "Quorvel/Core/AppLauncher.h"
#include "Quorvel/Core/BarHiding.h"
#include "Quorvel/Core/BarPanels.h"
#include "Quorvel/Core/BarReservations.h"
#include "Quorvel/Core/BarSize.h"
#include "Quorvel/Core/BarViewModel.h"
#include "Quorvel/Core/DockRoom.h"
#include "Quorvel/Core/LaunchMarks.h"
#include "Quorvel/Core/LauncherPresenter.h"
#include "Quorvel/Core/PinStates.h"
#include "Quorvel/Core/PinStore.h"
#include "Quorvel/Core/SpaceNavigation.h"
#include "Quorvel/Core/WheelNotches.h"
#include "Quorvel/Core/WindowAvoidanceManager.h"
#include "Quorvel/Core/WindowFinder.h"
#include "Quorvel/Core/WindowMoves.h"
#include "Quorvel/Core/WindowStates.h"
#include "Quorvel/Platform/Platform.h"

namespace quorvel {

class BadgeService;
class CursorOwnershipLog;
class MouseDisplayTracker;
class ThumbnailService;

/// Owns the bars, the launcher and the objects they act through, and keeps them in step with the
/// spaces and screens, the settings, and the windows that are under them. Main thread.
class BarManager {
public:
    /// The factory makes the bars and the launcher and outlives the manager.
    BarManager(const Platform&, WindowStore&, UserSettings&, BadgeService&, ThumbnailService&,
        BarFactory&);
    ~BarManager();

    /// The user has come to another space, and the model and the panels are up to date. Passes on
    /// the spaces that were read, so that nobody reads them again.
    std::function<void(const SpaceWindows::Answer&)> onSpaceChange;

    /// The user asks for the settings. Only where there is a window for them.
    std::function<void()> onSettingsRequested;
    /// Answers for the bars. Set before they are made.
    std::function<Menu(WindowID)> aboutWindow;

    AppLauncher& appLauncher() { return m_appLauncher; }
    PinStore& pinStore() { return m_pinStore; }
    BarViewModel& viewModel() { return m_viewModel; }
    const BarViewModel& viewModel() const { return m_viewModel; }
    const BarPanels::BySpace& panels() const { return m_panels.panels(); }
    const BarPanels::Mirrors& mirrorPanels() const { return m_panels.mirrorPanels(); }

    /// After spaces, screens or both have changed: makes a panel for each existing space, removes
    /// the others, and refreshes the model. Asks for the spaces if they are not given.
    void syncPanels(const std::optional<SpaceWindows::Answer>& = {});
    /// The same, and once more when the list of spaces has caught up with the screens.
    void screensDidChange();
    /// Repositions every panel on its screen.
    void repositionPanels();
    void closeAllPanels();
    /// The program is about to end, perhaps without destructors: restores the desktop.
    void end();
    /// Index in the list of screens of the one the pointer is on, where things that follow it open.
    std::optional<std::size_t> preferredMouseScreenIndex();

    void handleScrollEvent(const ScrollEvent&, SpaceID from);
    void switchToAdjacentSpace(Direction, SpaceID from);
    void switchToSpace(SpaceID, std::optional<ProcessID> yieldingBack = {});
    void moveWindowToSpaceByDragging(WindowID, SpaceID from, SpaceID to);
    /// Null unless this kind is open.
    LauncherPanel* launcherPanel(LauncherKind kind = LauncherKind::applications) const
    {
        return m_launcher.panel(kind);
    }
    /// Who asks for the launcher.
    enum class LauncherCaller {
        thisProgram,
        anotherProgram, ///< on a shortcut of its own, perhaps
    };
    /// Opens it where the pointer is, or closes it. False if there is no bar to open it from.
    bool toggleAppLauncher(
        LauncherCaller = LauncherCaller::thisProgram, LauncherKind = LauncherKind::applications);
    /// An item of the bar where the pointer is, by its place in the row from 0.
    void useItem(std::size_t place, ItemUse);
    /// While something else needs the keyboard, a bar does not take it when the pointer enters.
    void setHoverKeyingSuppressed(bool);
    /// Gives the keyboard to the bar where the pointer is, to be walked with the arrow keys. False
    /// if there is none, or the system refuses.
    bool takeKeyboard();
    /// Sends the bar where the pointer is out of sight, or gets it back. False if there is none, or
    /// bars do not hide.
    bool toggleBar();

private:
    static constexpr Duration kAvoidanceAfterStart = seconds(0.5);
    /// When the system did not say which spaces there are, or may say it late.
    static constexpr Duration kSyncAgain = seconds(0.5);
    static constexpr int kMostSyncsAgain = 20;
    /// More would delay the switch that the user is waiting for.
    static constexpr std::size_t kPicturesBeforeLeaving = 4;

    void setupSpaceChangeObserver();
    /// Refreshes the model once in the next turn, however many windows change in this one.
    void windowsDidChange();
    void refreshNow() { refreshNow(m_spaceWindows.ask()); }
    void refreshNow(const SpaceWindows::Answer&);
    void launcherDidOpen(bool isOpen);
    void updateActiveSpacePanelVisibility(const SpaceWindows::Answer&);
    void handleSettingsChanged();
    void applyMetrics(const BarMetrics&);
    void placePanels(const SpaceWindows::Answer&);
    void syncMirrorPanels();
    void syncAgain();
    std::vector<Screen> coveredScreensForBar() const;
    void applyDockRectRegistrations();
    void applyEdgeReservationsIfNeeded();
    /// Of the bars that can be seen, the one on the pointer's display, or else any; null if there
    /// is none.
    Bar* resolveLauncherAnchorPanel();
    void fill(Bar&);
    BarContents contents(const Bar&);
    void dismissPopups(const Bar* exception = nullptr);
    void releaseKeyboards();
    void prefetchCurrentSpaces();
    WindowAvoidanceManager::Bars barsToAvoid();
    WheelNotches::Steps wheelSteps();

    Platform m_platform;
    WindowStore& m_windowStore;
    SpaceWindows m_spaceWindows;
    UserSettings& m_settings;
    ThumbnailService& m_thumbnailService;
    AppLauncher m_appLauncher;
    PinStore m_pinStore;
    BarMetrics m_metrics;
    BarSize m_lastAppliedBarSize;
    BarViewModel m_viewModel;
    LaunchMarks m_launchMarks;
    BarReservations m_reservations;
    DockRoom m_dockRoom;
    BarPanels m_panels;
    WindowFinder m_windowFinder;
    PinStates m_pinStates;
    LauncherPresenter m_launcher;
    BarHiding m_hiding;
    SpaceNavigation m_navigation;
    WheelNotches m_wheel{wheelSteps()};
    WindowMoves m_moves;
    WindowStates m_windowStates;
    WindowAvoidanceManager m_avoidanceManager;
    std::unique_ptr<MouseDisplayTracker> m_mouseDisplayTracker; ///< null until it is asked
    std::unique_ptr<CursorOwnershipLog> m_cursorOwnershipLog; ///< null unless asked for
    bool m_isHoverKeyingSuppressed = false;
    Subscription m_activeSpaceChange;
    Subscription m_settingsChange;
    Subscription m_minimizing;
    WorkItem m_refresh;
    WorkItem m_avoidanceAfterStart;
    WorkItem m_syncAgain;
    int m_unansweredSyncs = 0; ///< in succession
};

}
