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

/// What an X server and its window manager say of windows and desktops, kept up to date and handed
/// to the tracker of the desktop.
///
/// Events only mark what is stale. When all events of a turn are handled, everything stale is read
/// in a few round trips however many windows it concerns; then each changed client is put into the
/// model's words, and the tracker announces what is different. Timers lead to the same update. Main
/// thread.
class Mirror {
public:
    /// A window whose desktop stays unknown for so long counts as on the current one.
    static constexpr auto kDesktopWait = std::chrono::milliseconds{250};
    /// The manager tells of one new window in a dozen pieces. That one is there, or gone, is
    /// followed at once after a pause; what else comes right after an update waits for the rest,
    /// and so do the windows of a row that open or close together.
    static constexpr auto kPace = std::chrono::milliseconds{8};

    Mirror(
        Connection&, Dispatch&, Monitors&, PanelEnvironment&, const SharedModel&, DesktopTracker&);

    Clients& clients() { return m_clients; }
    const RootState& root() const { return m_root; }
    /// Whether this program made the window.
    bool isOwn(xcb_window_t) const;

    /// Docks of other programs keep other parts of the screen free.
    Signal<> reservationsDidChange;

private:
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
    bool isReady(Client&);
    void remove(Client&);
    FocusTracker::Active activeClient();
    void translateStacking();
    void updateCoverage();
    void announce();

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
        = Instant::min(); ///< the last that a new or vanished window asked for
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
};

}
