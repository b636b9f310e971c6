#pragma once

#include <optional>

#include <xcb/xcb.h>

#include "Quorvel/Platform/Surfaces.h"

namespace quorvel::xdg::x11 {

/// Turns one window's pointer events into those of the view in it. Motion is kept until the turn of
/// the loop ends or another event needs its place, so a fast mouse costs one event per turn.
class PointerTracker {
public:
    void setScale(double pixelsPerPoint) { m_scale = pixelsPerPoint; }
    /// The view that hears from now on: the former one sees the pointer leave, the new one enter.
    void setClient(SurfaceClient*);
    /// For an event of this window.
    void handle(const xcb_generic_event_t*);
    /// Whether the pointer has moved since.
    bool endTurn();
    /// Ends what the client knows of the pointer, as when a menu takes it.
    void cancel();

private:
    void enter(Point);
    void leave(Point);
    void press(const xcb_button_press_event_t&);
    void release(const xcb_button_release_event_t&);
    void deliverMotion();
    void send(PointerAction, Point, PointerButton = PointerButton::none);
    Point toPoints(std::int16_t x, std::int16_t y) const { return {x / m_scale, y / m_scale}; }

    SurfaceClient* m_client = nullptr;
    double m_scale = 1;
    Point m_last;
    std::optional<Point> m_motion;
    bool m_isInside = false;
    PointerButton m_pressed = PointerButton::none;
};

}
