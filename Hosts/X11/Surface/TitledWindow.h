#pragma once

#include <functional>
#include <string>
#include <vector>

#include "Hosts/X11/Surface/BackBuffer.h"
#include "Hosts/X11/Surface/WindowPlace.h"
#include "Hosts/X11/Surface/WindowProperties.h"

namespace quorvel::xdg::x11 {

/// A window as any program's, with a title and a close button, whose size the user cannot change.
/// Pixels of the X screen, without the window manager's frame.
class TitledWindow {
public:
    TitledWindow(Connection&, const std::string& title, const Rect& frame);
    ~TitledWindow();
    TitledWindow(const TitledWindow&) = delete;
    TitledWindow& operator=(const TitledWindow&) = delete;

    /// The user wants it closed. The last thing that is done in `handle`.
    std::function<void()> onCloseWanted;

    xcb_window_t id() const { return m_window; }
    /// Where it is: the user moves it, and some managers give it a size of their own.
    const Rect& frame() const { return m_frame; }
    void setFrame(const Rect&);
    void setCursor(xcb_cursor_t);

    /// The surface to paint on; null for lack of memory.
    cairo_surface_t* picture() const { return m_buffer.surface(); }
    /// Shows these parts of the picture.
    void present(const std::vector<Rect>& parts);
    void expose(const Rect& part) { m_buffer.copyTo(m_window, part); }

    /// Brings it up. Managers give the focus to what the user has just asked for.
    void map(xcb_timestamp_t now);
    /// In front of the others and with the focus, if the manager agrees.
    void activate(xcb_timestamp_t now);

    /// For an event of this window.
    void handle(const xcb_generic_event_t*);
    /// True if somebody else has moved it or changed its size.
    bool endTurn();

private:
    void create();
    void describe(const std::string& title);
    void setSizeHints();
    void handleMessage(const xcb_client_message_event_t&);

    Connection& m_connection;
    BackBuffer m_buffer;
    const xcb_window_t m_window;
    WindowProperties m_properties;
    Rect m_frame;
    WindowPlaceQuery m_place;
};

}
