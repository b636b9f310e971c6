#pragma once

#include <optional>

#include <xcb/xcb.h>

#include "Quorvel/Platform/Dispatch.h"

namespace quorvel::xdg::x11 {

class Connection;

/// Whether a window manager is running that can be relied on.
///
/// A manager is present once the check property of the root names a window that names itself. It is
/// gone when that window is destroyed or nobody owns `WM_S0`; what it wrote on the root may remain.
/// Once another client owns `WM_S0` it is not relied on either: it is to end (ICCCM 2.8), but
/// empties its list first, and a busy machine may take long over the rest. A successor rebuilds its
/// list client by client, so it is relied on only when the list has settled. Main thread.
class WindowManagerWatch {
public:
    static constexpr auto kListRest = std::chrono::milliseconds{100};
    static constexpr auto kEarliestThaw = std::chrono::milliseconds{500};
    static constexpr auto kLatestThaw = std::chrono::milliseconds{1500};

    enum class State { absent, returning, present };

    WindowManagerWatch(Connection&, Dispatch&);

    State state() const { return m_state; }
    bool isPresent() const { return m_state == State::present; }
    /// True if the state of the manager has to be looked at again.
    bool handle(const xcb_generic_event_t*);
    /// Looks at what changed; at most two round trips, none if nothing did.
    void update();
    /// When `update` must be called again without an event.
    std::optional<Instant> deadline() const;

private:
    void verify();
    bool handle(const xcb_property_notify_event_t&);
    xcb_window_t readCheckWindow();
    void managerDidCome(xcb_window_t);
    bool selectionDidChange(xcb_window_t owner);
    bool isOfSameClient(xcb_window_t owner) const;

    Connection& m_connection;
    Dispatch& m_dispatch;
    State m_state = State::absent;
    xcb_window_t m_checkWindow = XCB_WINDOW_NONE; ///< of the last manager, until it is destroyed
    bool m_isLeaving = false; ///< it has lost `WM_S0`, and its window is still there
    xcb_window_t m_candidate = XCB_WINDOW_NONE; ///< named on the root, perhaps not yet by itself
    bool m_isCheckStale = true;
    bool m_isFirstLook = true;
    std::uint8_t m_selectionEvent = 0; ///< 0: the server does not report selections
    Instant m_cameAt;
    Instant m_listChangedAt;
};

}
