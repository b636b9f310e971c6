#pragma once

#include <functional>
#include <optional>

#include "Hosts/X11/Surface/BackBuffer.h"
#include "Hosts/X11/Surface/MenuKeys.h"
#include "Hosts/X11/Surface/MenuLayout.h"
#include "Hosts/X11/Surface/PaintSource.h"
#include "Hosts/X11/Surface/SurfaceContext.h"
#include "Quorvel/Platform/Dispatch.h"

namespace quorvel::x11 {

/// An open menu. It holds the pointer and the keyboard until an entry is chosen or anything else is
/// done. Destroying it takes it off the screen.
class MenuWindow {
public:
    /// Called once, with the action to run if an entry was chosen; the menu may be destroyed then.
    using Ended = std::function<void(std::function<void()> action)>;

    /// `anchor` in pixels of the X screen.
    MenuWindow(const SurfaceContext&, Menu, const Rect& anchor, Ended);
    ~MenuWindow();
    MenuWindow(const MenuWindow&) = delete;
    MenuWindow& operator=(const MenuWindow&) = delete;

private:
    void createWindow(const Rect& pixels);
    void grab();
    bool grabPointer();

    void handle(const xcb_generic_event_t*);
    void motion(Point);
    void press(Point);
    void release(Point);
    void key(xcb_keycode_t);
    void highlight(std::optional<std::size_t> row);
    void choose(std::optional<std::size_t> row);
    void end(std::function<void()> action = {});

    void paint();
    void paintRow(Canvas&, std::size_t row);

    SurfaceContext m_context;
    const Menu m_menu;
    Ended m_ended;
    const double m_scale;
    MenuLayout m_layout;
    MenuKeys m_keys;
    PaintSource m_paint;
    BackBuffer m_buffer;
    xcb_window_t m_window = 0;
    std::optional<std::size_t> m_highlighted;
    std::optional<Point> m_firstMotion;
    bool m_hasPointerMoved = false; ///< the click that opened it must not choose at once
    int m_grabAttempts = 0;
    WorkItem m_nextGrab;
    Subscription m_events;
};

}
