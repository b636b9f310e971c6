#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "Hosts/Linux/Desktop/DesktopModel.h"
#include "Hosts/Linux/Desktop/FocusTracker.h"
#include "Hosts/Linux/Desktop/IconNews.h"
#include "Hosts/Linux/Desktop/ProcessTable.h"
#include "Quorvel/Platform/Published.h"

namespace quorvel::xdg {

class DesktopEntries;
class ObserverRegistry;

/// Keeps the model in step with the display server's reports, and announces what changed.
///
/// The reports of a turn are passed in one by one, and the model shows them at once; `announce`
/// then reports the changes, in an order in which whoever learns of one change can trust what the
/// model says about the others. Main thread.
class DesktopTracker {
public:
    DesktopTracker(Dispatch&, DesktopEntries&, SharedModel&, ObserverRegistry&);

    /// One name per space, in order; empty where it has none. True if they changed.
    bool setSpaces(std::vector<std::string> names, SpaceID active);
    /// A window that is new or may have changed. Its owner is derived from its origin.
    void setWindow(WindowRecord, const WindowOrigin&);
    void removeWindow(WindowID);
    /// A lost focus may be accepted only later: `deadline` says when to report it again.
    void setActive(const FocusTracker::Active&);
    void setFrontToBack(std::vector<WindowID>);
    /// What the window says of its application; absent if it is not there.
    std::optional<WindowIdentity> identityOf(WindowID) const;
    /// Finds the application of every window anew.
    void matchAnew() { entriesDidChange(); }
    /// The window has new pictures of itself.
    void iconDidChange(WindowID);
    /// Of applications, with the other announcements or a little later.
    IconNews& icons() { return m_icons; }
    /// The display server is being asked to activate this window, or to take the focus from one.
    void expectFocus(std::optional<WindowID> window) { m_focus.expect(window, m_dispatch.now()); }

    /// Moves and resizes not yet reported to observers. While the user drags, only the end is
    /// reported.
    bool hasMoves() const { return !m_moves.empty(); }
    void reportMoves();
    void announce();

    std::optional<Instant> deadline() const { return m_focus.deadline(); }
    bool isSelfActive() const { return m_focus.isOwnWindowActive(); }
    /// Whether windows, their places, their order or the spaces changed since the last call.
    bool takeLayoutDidChange() { return std::exchange(m_layoutDidChange, false); }

    /// There is something to announce that does not come from the display server: a process has
    /// ended, or applications were installed.
    Signal<> hasNews;

    /// Announcements, in this order within a turn; the model already shows them.
    Signal<RunningApplication> applicationDidLaunch;
    Signal<> spacesDidChange;
    Signal<> spacesOfWindowsDidChange;
    Signal<> activeSpaceDidChange;
    Signal<RunningApplication> applicationDidActivate;
    /// The set of windows that ask for attention changed.
    Signal<> attentionDidChange;
    /// No window has had the focus for a while.
    Signal<> focusWasLost;
    Signal<RunningApplication> applicationDidTerminate;

private:
    struct Changes {
        std::vector<RunningApplication> launched;
        std::vector<RunningApplication> terminated;
        std::optional<RunningApplication> activated;
        std::vector<DesktopNotification> notifications;
        bool spaces = false;
        bool spacesOfWindows = false;
        bool activeSpace = false;
        bool attention = false;
        bool focusLost = false;
    };
    /// What the model does not hold about a window.
    struct Known {
        WindowOrigin origin;
        std::string bundleIdentifier;
        bool hasProcessEnded = false;

        WindowOrigin present() const;
    };
    struct Moves {
        bool moved = false;
        bool resized = false;
    };

    ProcessID assign(WindowID, const WindowOrigin&);
    void reassign(WindowID);
    void noteNew(const WindowRecord&);
    void noteDifference(const WindowRecord& before, const WindowRecord& after);
    void notePresence(const WindowRecord& before, const WindowRecord& after);
    void noteGeometry(const WindowRecord& before, const WindowRecord& after);
    void noteLaunch(const WindowRecord&);
    void setFocus(ProcessID frontmost, std::optional<WindowID>);
    void updateApplications();
    ApplicationRecord applicationOf(const ProcessTable::Pair&) const;
    void takeEndedApplications();
    void processDidEnd(std::uint32_t process);
    void entriesDidChange();
    std::optional<WindowRecord> recordOf(WindowID) const;
    void notifyWindow(const WindowRecord&, std::string_view name);
    void notifyApplication(ProcessID, WindowID, std::string_view name);

    Dispatch& m_dispatch;
    SharedModel& m_model;
    ObserverRegistry& m_observers;
    ProcessTable m_processes;
    FocusTracker m_focus;
    IconNews m_icons;
    ProcessID m_desktopProcess;

    std::map<WindowID, Known> m_known;
    Changes m_changes;
    std::set<ProcessID> m_touched; ///< applications whose record may have changed
    std::map<WindowID, Moves> m_moves; ///< not reported yet
    std::uint64_t m_lastActivation = 0;
    std::optional<WindowID> m_lastFocused;
    std::optional<ProcessID> m_activated;
    bool m_layoutDidChange = true;

    Subscription m_entriesChanged;
    Subscription m_processEnded;
};

}
