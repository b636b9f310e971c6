#pragma once

#include <optional>

#include "Hosts/Linux/Desktop/DesktopModel.h"
#include "Hosts/Linux/Desktop/FocusTracker.h"
#include "Hosts/X11/Desktop/ButtonRelease.h"
#include "Hosts/X11/Desktop/Clients.h"
#include "Hosts/X11/Desktop/RootState.h"
#include "Hosts/X11/Desktop/ShowingDesktop.h"
#include "Hosts/X11/Desktop/Translation.h"
#include "Hosts/X11/Desktop/WindowManagerWatch.h"
#include "Quorvel/Platform/Published.h"

namespace quorvel::xdg {
class DesktopTracker;
struct PanelEnvironment;
}

namespace quorvel::xdg::x11 {

class Monitors;

/// A copy of what the X server and its window manager say about windows and desktops, kept up to
/// date and passed to the desktop tracker.
///
/// Events only mark facts as stale. When all events of a turn are handled, everything stale is read
/// in a few round trips, however many windows are concerned; each changed client is then translated
/// into the model, and the tracker announces what changed. Timers trigger the same update. Main
/// thread.
class Mirror {
public:
    /// A window whose desktop stays unknown for this long is shown on the current one.
    static constexpr auto kDesktopWait = std::chrono::milliseconds{250};
    /// A manager announces one new window in a dozen pieces. After a pause, its appearance or
    /// disappearance is followed at once; whatever comes right after an update waits for the rest,
    /// as do the windows of a series that open or close together.
    static constexpr auto kPace = std::chrono::milliseconds{16};
    /// Finding a new window's frame takes further round trips, which its chip does not wait for:
    /// the next update takes it along, after this time at the latest.
    static constexpr auto kAncestryDelay = std::chrono::milliseconds{20};

    Mirror(
        Connection&, Dispatch&, Monitors&, PanelEnvironment&, const SharedModel&, DesktopTracker&);

    Clients& clients() { return m_clients; }
    const RootState& root() const { return m_root; }
    /// One that can be relied on.
    bool hasWindowManager() const { return m_manager.isPresent(); }
    /// Whether this program created the window.
    bool isOwn(xcb_window_t) const;

    /// Docks of other programs reserve different parts of the screen.
    Signal<> reservationsDidChange;

private:
    void handle(const xcb_generic_event_t*);
    void turnEnded();
    void update();
    void readAll();
    /// What depends on no other answer, in one round trip.
    void readTogether(Instant now, bool isFirst);
    bool isRootStale() const;
    void followManager();
    TranslationContext context() const;
    void scheduleNext();
    void scheduleUpdate();

    void translateSpaces();
    void translateClients();
    void translate(Client&);
    bool isReady(Client&);
    void remove(Client&);
    FocusTracker::Active activeClient();
    void translateStacking();
    void updateCoverage();

    Connection& m_connection;
    Dispatch& m_dispatch;
    Monitors& m_monitors;
    PanelEnvironment& m_environment;
    const SharedModel& m_model;
    DesktopTracker& m_tracker;

    RootState m_root;
    WindowManagerWatch m_manager;
    Clients m_clients;
    ShowingDesktop m_showingDesktop;
    ButtonRelease m_buttons;

    Instant m_lastUpdate = Instant::min();
    Instant m_lastUrgentUpdate
        = Instant::min(); ///< the last one caused by a new or vanished window
    bool m_needsUpdate = true;
    bool m_isUrgent = false;
    bool m_wasPresent = false;
    bool m_isCoverageStale = true;
    bool m_reservationsDidChange = false;

    Subscription m_events;
    Subscription m_turnEnded;
    Subscription m_monitorsChanged;
    Subscription m_trackerHasNews;
    WorkItem m_next;
    WorkItem m_paced;
    Instant m_pacedDue;
    WorkItem m_ancestry;
};

}
