#pragma once

#include <optional>

#include <xcb/xcb.h>

#include "Quorvel/Platform/Surfaces.h"

namespace quorvel::xdg::x11 {

/// `none` for what is no button of those that surfaces know.
PointerButton pointerButtonOf(xcb_button_t);
/// Absent for what is no wheel.
std::optional<ScrollEvent> scrollEventOf(xcb_button_t, Point);

/// Hands one window's pointer events to the client in it. Motion is kept until the turn of the loop
/// ends or another event needs its place, so a fast mouse costs one event per turn.
class PointerTracker {
public:
    void setScale(double pixelsPerPoint) { m_scale = pixelsPerPoint; }
    /// Who hears from now on: the former one has lost the pointer, to the new one it comes.
    void setClient(SurfaceClient*);
    /// For an event of this window.
    void handle(const xcb_generic_event_t*);
    /// Whether the pointer has moved since.
    bool endTurn();
    /// The window goes, or a menu takes the pointer. What it did before comes too late from now on.
    void lose();

private:
    void cross(PointerAction, const xcb_enter_notify_event_t&);
    void turnButton(PointerAction, const xcb_button_press_event_t&);
    void deliverMotion();
    void send(const PointerEvent&);
    Point toPoints(std::int16_t x, std::int16_t y) const { return {x / m_scale, y / m_scale}; }

    SurfaceClient* m_client = nullptr;
    double m_scale = 1;
    Point m_last;
    std::optional<PointerEvent> m_motion;
    bool m_isInside = false;
    bool m_isLost = false; ///< until it comes anew
};

}
