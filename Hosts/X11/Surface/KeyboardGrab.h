#pragma once

#include <xcb/xcb.h>

#include "Hosts/X11/RawButtons.h"
#include "Quorvel/Platform/Published.h"
#include "Quorvel/Platform/Surfaces.h"

namespace quorvel::xdg::x11 {

class Connection;
class Keyboard;

/// Leads all keys to one client until it gives them back or a button of the pointer is pressed,
/// wherever that is. The focus stays where it is: the programs' windows look as they did, and the
/// window manager does not hear of it.
class KeyboardGrab {
public:
    KeyboardGrab(Connection&, Keyboard&, SurfaceClient&);
    ~KeyboardGrab();
    KeyboardGrab(const KeyboardGrab&) = delete;
    KeyboardGrab& operator=(const KeyboardGrab&) = delete;

    /// False while another program has the keyboard to itself, or the window is not on the screen.
    bool take(xcb_window_t);
    void release();

private:
    void handle(const xcb_generic_event_t*);
    void end();

    Connection& m_connection;
    Keyboard& m_keyboard;
    SurfaceClient& m_client;
    const RawButtons m_presses; ///< the masters' own selection is left to others
    xcb_window_t m_window = XCB_WINDOW_NONE; ///< none while the keyboard is not held
    Subscription m_events;
};

}
