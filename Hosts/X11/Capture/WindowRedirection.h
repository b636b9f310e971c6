#pragma once

#include <xcb/composite.h>
#include <xcb/xcb.h>

#include "Hosts/X11/Capture/CaptureConnection.h"

namespace quorvel::xdg::x11 {

/// While it exists, the server keeps a window below the root as a picture of its own, and still
/// shows it on the screen. What was covered comes with the client's next drawing. The server ends
/// it with the connection, however that ends.
class WindowRedirection {
public:
    WindowRedirection(CaptureConnection& connection, xcb_window_t topLevel)
        : m_connection(connection)
        , m_topLevel(topLevel)
    {
        xcb_composite_redirect_window(
            m_connection.raw(), m_topLevel, XCB_COMPOSITE_REDIRECT_AUTOMATIC);
        xcb_flush(m_connection.raw());
    }
    ~WindowRedirection()
    {
        xcb_composite_unredirect_window(
            m_connection.raw(), m_topLevel, XCB_COMPOSITE_REDIRECT_AUTOMATIC);
        xcb_flush(m_connection.raw());
    }
    WindowRedirection(const WindowRedirection&) = delete;
    WindowRedirection& operator=(const WindowRedirection&) = delete;

private:
    CaptureConnection& m_connection;
    const xcb_window_t m_topLevel;
};

}
