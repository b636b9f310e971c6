#pragma once

#include <cstdint>
#include <optional>

#include <xcb/xcb.h>

#include "Hosts/X11/RawButtons.h"
#include "Hosts/X11/Surface/MenuKeys.h"
#include "Quorvel/Platform/Published.h"
#include "Quorvel/Platform/Surfaces.h"

namespace quorvel::xdg::x11 {

class Connection;

/// What a key leads to, if anything; `symbol` is that of its first level.
std::optional<Key> keyFor(std::uint32_t symbol, bool isShifted);

/// Leads all keys to one client until it gives them back or a button of the pointer is pressed,
/// wherever that is. The focus stays where it is: the programs' windows look as they did, and the
/// window manager does not hear of it.
class KeyboardGrab {
public:
    KeyboardGrab(Connection&, SurfaceClient&);
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
    SurfaceClient& m_client;
    const RawButtons m_presses; ///< the masters' own selection is left to others
    xcb_window_t m_window = XCB_WINDOW_NONE; ///< none while the keyboard is not held
    std::optional<MenuKeys> m_keys;
    Subscription m_events;
};

}
