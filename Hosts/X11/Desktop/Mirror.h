#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "Hosts/Linux/Desktop/DesktopModel.h"
#include "Hosts/Linux/Desktop/FocusTracker.h"
#include "Hosts/X11/Desktop/ButtonRelease.h"
#include "Hosts/X11/Desktop/Clients.h"
#include "Hosts/X11/Desktop/ProcessTable.h"
#include "Hosts/X11/Desktop/RootState.h"
#include "Hosts/X11/Desktop/ShowingDesktop.h"
#include "Hosts/X11/Desktop/Translation.h"
#include "Hosts/X11/Desktop/WindowManagerWatch.h"
#include "Quorvel/Platform/Published.h"

namespace quorvel::xdg {
class DesktopEntries;
class ObserverRegistry;
struct PanelEnvironment;
}

namespace quorvel::xdg::x11 {

class Monitors;

/// Keeps the model like the desktop.
///
/// Events only mark what is stale. When all events of a turn are handled, everything stale is read
/// in a few round trips however many windows it concerns; then each changed client is put into the
/// model's words, and the difference to what the model said before is announced. Timers lead to the
/// same update. Main thread.
class Mirror {
public:
    /// A window whose desktop stays unknown for so long counts as on the current one.
    static constexpr auto kDesktopWait = std::chrono::milliseconds{250};
    /// The manager tells of one new window in a dozen pieces. That one is there, or gone, is
    /// followed at once after a pause; what else comes right after an update waits for the rest,
    /// and so do the windows of a row that open or close together.
    static constexpr auto kPace = std::chrono::milliseconds{8};

    Mirror(Connection&, Dispatch&, Monitors&, PanelEnvironment&, DesktopEntries&, SharedModel&,
        ObserverRegistry&);

    Clients& clients() { return m_clients; }
    const RootState& root() const { return m_root; }
    ProcessTable& processes() { return m_processes; }
    /// Whether this program made the window.
    bool isOwn(xcb_window_t) const;
    /// The manager is being asked to activate this window, or to take the focus from one.
    void expectFocus(std::optional<WindowID> window) { m_focus.expect(window, m_dispatch.now()); }
    bool isSelfActive() const { return m_focus.isOwnWindowActive(); }

    /// Announcements, in this order within a turn; the model says it already.
    Signal<RunningApplication> applicationDidLaunch;
    Signal<> spacesDidChange;
    Signal<> spacesOfWindowsDidChange;
    Signal<> activeSpaceDidChange;
    Signal<RunningApplication> applicationDidActivate;
    Signal<RunningApplication> applicationDidTerminate;
    Signal<std::string> iconDidChange;
    /// For a while now no window has had the focus.
    Signal<> focusWasLost;
    /// Other windows than before ask for attention.
    Signal<> attentionDidChange;
    /// Docks of other programs keep other parts of the screen free.
    Signal<> reservationsDidChange;

private:
    struct Changes {
        std::vector<RunningApplication> launched;
        std::vector<RunningApplication> terminated;
        std::optional<RunningApplication> activated;
        std::vector<DesktopNotification> notifications;
        std::set<std::string> icons;
        bool spaces = false;
        bool spacesOfWindows = false;
        bool activeSpace = false;
        bool attention = false;
        bool focusLost = false;
        bool reservations = false;
    };

    void handle(const xcb_generic_event_t*);
    void turnEnded();
    void update();
    void readAll();
    void followManager();
    TranslationContext context() const;
    void scheduleNext();
    void scheduleUpdate();

    void translateSpaces();
    void translateClients();
    void translate(Client&);
    static void forgetHonouredSize(Client&, Size points);
    bool isReady(Client&);
    ProcessID assign(Client&);
    void noteNew(const WindowRecord&);
    void noteDifference(const WindowRecord& before, const WindowRecord& after);
    void notePresence(const WindowRecord& before, const WindowRecord& after);
    void noteGeometry(const WindowRecord& before, const WindowRecord& after);
    void noteLaunch(const WindowRecord&);
    void remove(Client&);
    void reportMoves();
    void translateFocus();
    FocusTracker::Active activeClient();
    void setFocus(ProcessID frontmost, std::optional<WindowID>);
    void translateApplications();
    ApplicationRecord recordOf(const ProcessTable::Pair&);
    void takeEndedApplications();
    void translateStacking();
    void updateCoverage();
    void announce();

    void processDidEnd(std::uint32_t process);
    void notifyWindow(const WindowRecord&, std::string_view name);
    void notifyApplication(ProcessID, WindowID, std::string_view name);

    struct Moves {
        bool moved = false;
        bool resized = false;
    };

    Connection& m_connection;
    Dispatch& m_dispatch;
    Monitors& m_monitors;
    PanelEnvironment& m_environment;
    SharedModel& m_model;
    ObserverRegistry& m_observers;

    RootState m_root;
    WindowManagerWatch m_manager;
    Clients m_clients;
    ProcessTable m_processes;
    ShowingDesktop m_showingDesktop;
    FocusTracker m_focus;
    ButtonRelease m_buttons;
    ProcessID m_desktopProcess;
    WindowID m_rootNumber;

    Changes m_changes;
    std::set<ProcessID> m_touched; ///< applications whose record may have changed
    std::map<WindowID, Moves> m_moves; ///< not reported yet
    std::uint64_t m_lastActivation = 0;
    std::optional<WindowID> m_lastFocused;
    std::optional<ProcessID> m_activated;
    Instant m_lastUpdate = Instant::min();
    Instant m_lastUrgentUpdate
        = Instant::min(); ///< the last that a new or vanished window asked for
    bool m_needsUpdate = true;
    bool m_isUrgent = false;
    bool m_wasPresent = false;
    bool m_isCoverageStale = true;

    Subscription m_events;
    Subscription m_turnEnded;
    Subscription m_monitorsChanged;
    Subscription m_entriesChanged;
    Subscription m_processEnded;
    WorkItem m_next;
    WorkItem m_paced;
};

}
