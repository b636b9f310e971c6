#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include <xcb/xcb.h>

#include "Hosts/X11/Atoms.h"
#include "Hosts/X11/PixelLayout.h"
#include "Quorvel/Platform/Published.h"

namespace quorvel::xdg::x11 {

/// The screen of this number, null if there is none.
xcb_screen_t* screenOf(xcb_connection_t*, int number);

/// The memory layout of pixels of this depth and visual; not readable where the server's byte order
/// differs from ours.
PixelLayout pixelLayout(
    xcb_connection_t*, const xcb_screen_t&, std::uint8_t depth, xcb_visualid_t visual);

/// The connection to the X server, as a source of GLib's main loop. Main thread.
class Connection {
public:
    /// Null with a one-line problem when there is no X display.
    static std::unique_ptr<Connection> open(std::string& problem);
    ~Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    xcb_connection_t* raw() const { return m_connection; }
    const xcb_screen_t& screen() const { return *m_screen; }
    int screenNumber() const { return m_screenNumber; }
    xcb_window_t root() const { return m_screen->root; }
    const Atoms& atoms() const { return m_atoms; }
    /// Whether it was made over this connection.
    bool isOwn(xcb_window_t) const;

    /// Adds events to those this program receives from the window. A client has one event mask per
    /// window, so the mask of the root or of another client's window must not be set directly.
    /// Returns those that it did not receive before: they alone may be removed again.
    std::uint32_t addEventMask(xcb_window_t, std::uint32_t mask);
    void removeEventMask(xcb_window_t, std::uint32_t mask);
    /// Call when a window is gone: its number may be reused.
    void forgetWindow(xcb_window_t);

    /// Waits until the server has handled the request of this number. Costs a round trip only if no
    /// event since then has told so.
    void waitUntilHandled(std::uint32_t sequence);

    /// Each event in order (never an error: those of requests that nobody waits for are dropped).
    Signal<const xcb_generic_event_t*> event;
    /// Emitted when all events that were waiting have been handled; requests made here go out in
    /// one flush.
    Signal<> turnEnded;
    /// The connection has broken; no call on it makes sense any more.
    Signal<> lost;

private:
    struct Source;

    Connection(xcb_connection_t*, int screenNumber);
    /// Reads and emits all events that are waiting.
    void dispatchEvents();
    bool isHandled(std::uint32_t sequence) const;
    void tellHandled(std::uint32_t sequence);

    xcb_connection_t* m_connection;
    int m_screenNumber;
    std::uint32_t m_handled = 0; ///< the request that the server is known to have come to
    xcb_screen_t* m_screen;
    Atoms m_atoms;
    struct Masks;
    std::unique_ptr<Masks> m_masks;
    std::unique_ptr<Source> m_source;
};

}
