#pragma once

#include <cstdint>

#include <xcb/xcb.h>

#include "Hosts/X11/RawButtons.h"

namespace quorvel::xdg::x11 {

class Connection;

/// Reports when the pointer's buttons are released, even while another client holds the pointer.
/// Listens only while somebody waits. Main thread.
class ButtonRelease {
public:
    explicit ButtonRelease(Connection&);

    /// Whether a button is pressed, from the mask of a pointer query.
    static bool isPressed(std::uint32_t pointerMask);

    /// Starts waiting; false where the server cannot report releases.
    bool wait();
    bool isWaiting() const { return m_isWaiting; }
    /// True if the event ends the wait.
    bool handle(const xcb_generic_event_t*);

private:
    bool isStillPressed() const;

    Connection& m_connection;
    const RawButtons m_releases;
    bool m_isWaiting = false;
};

}
