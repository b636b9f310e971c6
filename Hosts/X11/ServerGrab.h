#pragma once

#include <xcb/xcb.h>

#include "Hosts/X11/Connection.h"

namespace quorvel::xdg::x11 {

/// While it lives, the server serves nobody else: what is read stays true until something is
/// written. The connection outlives it.
class ServerGrab {
public:
    explicit ServerGrab(const Connection& connection) : m_connection(connection.raw())
    {
        xcb_grab_server(m_connection);
    }
    ~ServerGrab()
    {
        xcb_ungrab_server(m_connection);
        xcb_flush(m_connection);
    }
    ServerGrab(const ServerGrab&) = delete;
    ServerGrab& operator=(const ServerGrab&) = delete;

private:
    xcb_connection_t* m_connection;
};

}
