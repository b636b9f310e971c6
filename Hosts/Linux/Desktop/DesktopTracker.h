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
#include "Hosts/Linux/Desktop/ProcessTable.h"
#include "Quorvel/Platform/Published.h"

namespace quorvel::xdg {

class DesktopEntries;
class ObserverRegistry;

/// Keeps the model like what the display server says, and tells what is different.
///
/// The news of a turn are handed in one by one, and the model says them at once; `announce` then
/// tells them, in an order in which whoever hears of one thing can believe what the model says of
/// the others. Main thread.
class DesktopTracker {
public:
    DesktopTracker(Dispatch&, DesktopEntries&, SharedModel&, ObserverRegistry&);

    /// One name per space, in order; empty where it has none. True if they are others than before.
    bool setSpaces(std::vector<std::string> names, SpaceID active);
    /// A window that is new or perhaps different. Its owner is found by where it comes from.
    void setWindow(WindowRecord, const WindowOrigin&);
    void removeWindow(WindowID);
    /// May give a focus up only later: `deadline` says when to tell it again.
    void setActive(const FocusTracker::Active&);
    void setFrontToBack(std::vector<WindowID>);
    /// The window has other pictures of itself.
    void iconDidChange(WindowID);
    /// The display server is being asked to activate this window, or to take the focus from one.
    void expectFocus(std::optional<WindowID> window) { m_focus.expect(window, m_dispatch.now()); }

    /// Moves and resizes that no observer has heard of. While the user drags, only the end counts.
    bool hasMoves() const { return !m_moves.empty(); }
    void reportMoves();
    void announce();

    std::optional<Instant> deadline() const { return m_focus.deadline(); }
    bool isSelfActive() const { return m_focus.isOwnWindowActive(); }
    /// Whether windows, their places, their order or the spaces are others than at the last call.
    bool takeLayoutDidChange() { return std::exchange(m_layoutDidChange, false); }

    /// There is something to announce that the display server did not say: a process has ended, or
    /// applications were installed.
    Signal<> hasNews;

    /// Announcements, in this order within a turn; the model says it already.
    Signal<RunningApplication> applicationDidLaunch;
    Signal<std::string> iconOfApplicationDidChange; ///< by its bundle identifier
    Signal<> spacesDidChange;
    Signal<> spacesOfWindowsDidChange;
    Signal<> activeSpaceDidChange;
    Signal<RunningApplication> applicationDidActivate;
    /// Other windows than before ask for attention.
    Signal<> attentionDidChange;
    /// For a while now no window has had the focus.
    Signal<> focusWasLost;
    Signal<RunningApplication> applicationDidTerminate;

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
    };
    /// What the model does not say of a window.
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
