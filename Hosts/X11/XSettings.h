#pragma once

#include <xcb/xcb.h>

#include "Hosts/Linux/DesktopLooks.h"
#include "Quorvel/Platform/Published.h"

namespace quorvel::xdg::x11 {

class Connection;

/// The settings that a desktop's daemon shares through the X server (XSETTINGS), followed while the
/// program runs. The settings of a daemon that has gone hold until there is a new one. Main thread.
class XSettings {
public:
    explicit XSettings(Connection&);

    const Published<DesktopLooks>& looks() const { return m_looks; }

private:
    void handle(const xcb_generic_event_t*);
    void read();
    bool findOwner();

    Connection& m_connection;
    xcb_window_t m_owner = XCB_WINDOW_NONE;
    bool m_isStale = false;
    Published<DesktopLooks> m_looks;
    Subscription m_events;
    Subscription m_turnEnded;
};

}
