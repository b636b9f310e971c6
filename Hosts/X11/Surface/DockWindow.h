#pragma once

#include <string>

#include "Hosts/X11/Surface/BackBuffer.h"
#include "Hosts/X11/Surface/Strut.h"
#include "Hosts/X11/Surface/WindowPlace.h"
#include "Hosts/X11/Surface/WindowProperties.h"
#include "Quorvel/Platform/Dispatch.h"

namespace quorvel::xdg::x11 {

/// A bare window of type dock, on every desktop, with the hints that window managers need. Pixels
/// of the X screen. Destroying it removes its strut.
class DockWindow {
public:
    DockWindow(Connection&, Dispatch&, const WindowVisual&, const Rect& frame);
    ~DockWindow();
    DockWindow(const DockWindow&) = delete;
    DockWindow& operator=(const DockWindow&) = delete;

    xcb_window_t id() const { return m_window; }
    const Rect& frame() const { return m_frame; }

    void setFrame(const Rect&);
    void setTitle(const std::string&);
    void setStrut(const Strut&);
    void setBlursBehind(bool);
    void map();
    /// Under all windows of its monitor, or back above them.
    void setLowered(bool);

    /// For an event of this window: window managers may move it at any time, and any client may
    /// unmap it.
    void handle(const xcb_generic_event_t*);
    /// Puts it back where it belongs.
    void endTurn();

private:
    void create(const WindowVisual&);
    void describe();
    void setSizeHints();
    void configure();
    void requestMap(Duration patience);
    void comeBack();
    void declineShadowOf(xcb_window_t frame) const;

    Connection& m_connection;
    Dispatch& m_dispatch;
    const xcb_window_t m_window;
    WindowProperties m_properties;
    xcb_colormap_t m_colormap;
    Rect m_frame;
    std::string m_title;
    Strut m_strut;
    bool m_isMapped = false;
    bool m_isLowered = false;
    WindowPlaceQuery m_place;
    int m_corrections = 0;
    Duration m_returnDelay{};
    Instant m_lastReturn = Instant::min();
    WorkItem m_mapAgain;
};

}
