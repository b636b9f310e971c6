#pragma once

#include <memory>
#include <optional>

#include <xcb/xcb.h>

#include "Hosts/X11/RawButtons.h"
#include "Quorvel/Platform/Geometry.h"
#include "Quorvel/Platform/Published.h"
#include "Quorvel/Platform/Surfaces.h"

namespace quorvel::xdg::x11 {

class Connection;

/// A button that went down; turns of the wheel do not count.
struct ButtonPress {
    Point place; ///< pixels of the X screen
    PointerButton button = PointerButton::none; ///< none for one that surfaces do not know
};

/// Presses of the pointer's buttons, wherever they happen. Make it before the windows whose presses
/// it reports, so that it hears of them first. Main thread.
class PressWatch {
public:
    explicit PressWatch(Connection&);
    PressWatch(const PressWatch&) = delete;
    PressWatch& operator=(const PressWatch&) = delete;

    /// While somebody holds this, presses on other programs' windows are reported too: for each of
    /// them this program wakes up.
    [[nodiscard]] Subscription listenEverywhere();
    /// While a menu holds the pointer, all presses are the menu's.
    void setSuspended(bool isSuspended) { m_isSuspended = isSuspended; }

    /// A button went down somewhere, and no window has received the press yet.
    Signal<> began;
    /// Emitted before the window receives it.
    Signal<ButtonPress> onOwnWindow;
    /// Emitted when it is clear that no window of this program received it. The place is the
    /// pointer's a moment later: such events carry none.
    Signal<ButtonPress> elsewhere;

private:
    void handle(const xcb_generic_event_t*);
    void handleRaw(const xcb_input_raw_button_press_event_t&);
    void handleOwn(const xcb_button_press_event_t&);
    void settle();
    void release();

    Connection& m_connection;
    const RawButtons m_presses; ///< the selection of the master devices is left to others
    int m_listeners = 0;
    bool m_isSuspended = false;
    std::optional<ButtonPress> m_pending; ///< a window of ours may yet receive it
    Subscription m_events;
    Subscription m_turnEnded;
};

}
