#pragma once

#include <memory>
#include <optional>

#include <xcb/composite.h>
#include <xcb/xcb.h>

#include "Hosts/X11/Connection.h"
#include "Hosts/X11/Reply.h"

namespace quorvel::xdg::x11 {

/// A connection for captures alone, so that the bar's own never waits for a picture. One thread.
class CaptureConnection {
public:
    /// Null where the server cannot keep windows as pictures.
    static std::unique_ptr<CaptureConnection> open();
    ~CaptureConnection();
    CaptureConnection(const CaptureConnection&) = delete;
    CaptureConnection& operator=(const CaptureConnection&) = delete;

    xcb_connection_t* raw() const { return m_connection; }
    xcb_window_t root() const { return m_screen->root; }
    const xcb_screen_t& screen() const { return *m_screen; }
    const Atoms& atoms() const { return m_atoms; }

    /// Whether drawing on windows is reported (DAMAGE).
    bool hasDamage() const { return m_hasDamage; }
    /// The ancestor of the window below the root: its decoration, if it has one. None if the window
    /// has gone.
    xcb_window_t topLevelOf(xcb_window_t) const;
    /// Whether the request succeeded. Waits for the server.
    bool succeeds(xcb_void_cookie_t) const;
    PixelLayout layout(std::uint8_t depth, xcb_visualid_t visual) const
    {
        return pixelLayout(m_connection, *m_screen, depth, visual);
    }
    /// Drops queued events: the server sends some to every client, asked for or not.
    void dropEvents() const;

private:
    CaptureConnection(xcb_connection_t*, xcb_screen_t*);

    xcb_connection_t* m_connection;
    xcb_screen_t* m_screen;
    Atoms m_atoms;
    bool m_hasDamage;
};

}
