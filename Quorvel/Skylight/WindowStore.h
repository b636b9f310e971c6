#pragma once

#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string_view>
#include <variant>
#include <vector>

#include "Quorvel/Platform/Dispatch.h"
#include "Quorvel/Skylight/AXWindowEvent.h"
#include "Quorvel/Skylight/ProcessRecord.h"
#include "Quorvel/Skylight/TrackedWindow.h"
#include "Quorvel/Skylight/WindowScanner.h"

namespace quorvel {

/// Which windows exist, whose they are, on which spaces, minimised or not, and which has the focus.
///
/// Three sources feed it, and none can be trusted alone: the window server's list (complete, but
/// full of windows that are not the user's), each application's accessibility tree (knows roles and
/// titles, but is slow, late or silent), and the spaces. Applications create windows late, lose
/// them for a moment during animations, and announce windows that the window server does not know
/// yet. So:
///
/// - a process is scanned again on a short schedule after a launch or an unexplained window (the
/// burst: 0.3, 0.8 and 2.0 s) and, while it settles, at growing intervals (the life cycle);
/// - a window that a scan misses is removed only when a second scan misses it too and 0.45 s have
/// passed since the first; destroyed windows and ended processes go at once;
/// - a process that did not answer is looked at again until it does;
/// - a known process must show a new window in its accessibility tree before the window is
/// accepted.
///
/// The focus may name a window that is not tracked; readers must allow for that.
/// Main thread only. Every wait for an application is bounded by its messaging timeout.
class WindowStore {
public:
    static constexpr Duration kLaunchTickDelay = seconds(2.6);

    WindowStore(Dispatch&, Accessibility&, WindowServer&, Displays&, Workspace&, const Trace&);

    // What there is.
    const std::map<WindowID, TrackedWindow>& windows() const { return m_windows; }
    const TrackedWindow* window(WindowID) const;
    std::optional<WindowID> focusedWindowID() const { return m_focusedWindowID; }
    /// In ascending order of their numbers; valid until the store changes.
    std::vector<const TrackedWindow*> windows(SpaceID) const;
    /// The same for every space with a window, in one pass.
    std::map<SpaceID, std::vector<const TrackedWindow*>> windowsBySpace() const;
    std::set<ProcessID> trackedPIDs() const;
    std::set<WindowID> windowIDs(std::string_view bundleIdentifier) const;
    /// Tracks what is on the space of a full-screen window and returns the window to activate
    /// there.
    std::optional<WindowID> trackSoleWindow(SpaceID);

    /// One slot, never empty: called at the end of each operation that changed the windows or the
    /// focus.
    std::function<void()> onChange = [] { };
    /// Emitted when perhaps nobody listens to the process, or to a window of it that was found.
    std::function<void(ProcessID)> onObservationNeeded = [](ProcessID) { };

    // What the system reports.
    void populate();
    void handleAppActivated(ProcessID);
    bool needsObserverBootstrap(ProcessID) const;
    void handleObserverAttached(ProcessID);
    /// It cannot be observed, so it is polled.
    void handleObserverFailed(ProcessID);
    /// Admits the windows of the process; returns how many were added.
    int addWindowsForPID(ProcessID);
    /// The process has ended.
    void removeWindows(ProcessID);
    /// For the two calls below, so that one change of space reads the spaces once. Without it, they
    /// read them themselves.
    WindowScanner::SpacesMoment lookAtSpaces(const SpaceWindows::Answer& answer) const
    {
        return m_scanner.lookAtSpaces(answer);
    }
    void refreshSpaces(const std::optional<WindowScanner::SpacesMoment>& = {});
    void resyncMinimizedWindows();
    /// Looks at all applications that have windows: if all of an application's windows were on
    /// other spaces, this may be its first sighting.
    int discoverNewWindowsForTrackedPIDs(std::optional<WindowScanner::SpacesMoment> = {});
    void handleAXEvent(const AXWindowEvent&);

    // The schedule.
    void startLifecycleMonitoring(ProcessID, Duration initialDelay);
    void scheduleDeferredScan(ProcessID);

private:
    struct Active { };
    struct Missing {
        Instant firstMissingAt;
        int misses = 1;
    };
    using ReconcileState = std::variant<Active, Missing>;

    struct Admission {
        int added = 0;
        /// Untracked windows that must be looked at again: unpublished or unconfirmed.
        std::set<WindowID> unexplained;
        /// Those that nobody knows a space of, though their application shows them.
        std::set<WindowID> spaceless;
    };

    struct Discovery {
        int added = 0;
        bool hasChanged = false;
    };

    enum class Missed { kept, removed };
    using ScansByPID = std::map<ProcessID, PIDWindowScan>;

    int reconcileWindowsForPID(ProcessID, const WindowScanner::Moment&);
    /// As listed; else as the window server says for this window alone; else unchanged.
    std::set<SpaceID> spacesNow(const TrackedWindow&, std::set<SpaceID> listed,
        const std::set<SpaceID>& unlistedSpaces) const;
    /// A window may move to another process: X11 learns late whose it is.
    bool updateTracked(TrackedWindow&, ProcessID, const ScannedWindowCandidate&);
    void track(WindowID, ProcessID, const ScannedWindowCandidate&);
    bool updateTrackedWindows(ProcessID, const PIDWindowScan&);
    /// Tracks the new windows in the scan.
    Admission admitNewWindows(ProcessID, const PIDWindowScan&);
    Discovery discover(ProcessID, const WindowScanner::Moment&);
    /// Tracked windows whose title or minimised state could not be read.
    std::set<WindowID> unreadWindows(ProcessID, const PIDWindowScan&);
    /// False if a whole burst has looked for each of these windows in vain.
    bool isWorthSeeking(ProcessID, std::set<WindowID> unexplained);
    bool removeMissingWindows(ProcessID, const PIDWindowScan&);
    Missed noteMissed(WindowID);
    void forget(WindowID);
    bool requiresAXConfirmationForLiveAdmission(ProcessID) const;
    std::set<WindowID> unpublishedWindows(const PIDWindowScan&) const;
    void populateProcess(ProcessID, const WindowScanner::Moment&);

    /// False for a window that does not belong on the bar.
    bool trackOnSpace(
        WindowID, SpaceID, const WindowScanner::Moment&, ScansByPID&, bool& hasChanged);
    std::optional<WindowID> bestActivationCandidate(const std::vector<WindowID>&) const;

    /// The process's record, created if missing; and a lookup for callers that must not create one.
    ProcessRecord& record(ProcessID pid) { return m_processes[pid]; }
    ProcessRecord* knownRecord(ProcessID);
    const ProcessRecord* knownRecord(ProcessID) const;
    bool isObserverAttached(ProcessID) const;
    /// Call after each change of a record: one timer serves the earliest of all looks.
    void scheduleNextLook();
    /// Processes that are due in the same turn share one read of the window server.
    void runDueLooks();
    void runDueLook(ProcessID, ProcessRecord::Due, const WindowScanner::Moment&);
    void lookAt(ProcessID, ProcessRecord::Due, const WindowScanner::Moment&);
    /// Starts a whole burst, after the one in progress: its remaining scans may come too early.
    void scheduleFreshDeferredScan(ProcessID);
    /// A burst, or a sequel to the one in progress if its last scan has been.
    void seekUnexplained(ProcessID);
    void endDeferredScanBurst(ProcessID);
    void scheduleLifecycleTick(ProcessID, Duration delay);
    void concludeLifecycleTick(ProcessID);
    bool hasEnded(ProcessID) const;
    void ensureLifecycleMonitoringForWindowActivity(ProcessID);
    void scheduleMissingFollowUp(ProcessID);
    void lookAgainOnceItAnswers(ProcessID);
    void scheduleCrossScreenSpacesRefresh();

    void readFocus(ProcessID);
    void handleWindowCreated(const AXWindowEvent&);
    void handleDestroyed(const AXWindowEvent&);
    void handleTitleChanged(const AXWindowEvent&);
    void handleFrameChanged(const AXWindowEvent&);
    void handleMinimized(const AXWindowEvent&, bool isMinimized);
    void handleFocusedWindowChanged(const AXWindowEvent&);
    void admitCreatedWindow(const AXWindowEvent&, WindowID, const AXWindowMetadata&);
    void setFocusedWindow(WindowID);
    /// Starts a burst, unless the process can have no window on the bar.
    void scanForUntracked(ProcessID);

    TrackedWindow* tracked(const std::optional<WindowID>&);
    std::set<WindowID> trackedWindowIDs(ProcessID) const;
    bool hasTrackedWindows(ProcessID) const;
    bool hasMissingTrackedWindows(ProcessID) const;
    std::optional<std::size_t> indexOfScreenContaining(const Rect& windowFrame) const;
    bool areOnDifferentScreens(const Rect& before, const Rect& after) const;
    bool hasFocusedWindow(ProcessID) const;
    void seekFocus(ProcessID);

    Dispatch& m_dispatch;
    WindowServer& m_windowServer;
    Displays& m_displays;
    Workspace& m_workspace;
    const Trace& m_trace;
    WindowScanner m_scanner;

    std::map<WindowID, TrackedWindow> m_windows;
    std::optional<WindowID> m_focusedWindowID;
    /// Counts the events that were handled, so that the trace can tell the lines of one event
    /// apart.
    std::uint64_t m_debugEventSequence = 0;
    std::map<WindowID, ReconcileState> m_reconcileStateByWindowID;
    std::map<ProcessID, ProcessRecord> m_processes;
    /// Looks have found them on another screen; the end of the move has not been announced.
    std::set<WindowID> m_crossed;
    std::optional<Instant> m_nextLookAt;

    // Delayed work: last, so that it is cancelled before anything it uses goes.
    WorkItem m_nextLook;
    WorkItem m_pendingCrossScreenRefresh;
    WorkItem m_focusSearch;
};

}
