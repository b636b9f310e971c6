#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <utility>

#include <xcb/xcb.h>

#include "Quorvel/Platform/Surfaces.h"

namespace quorvel::xdg::x11 {

/// `none` for a button that surfaces do not know.
PointerButton pointerButtonOf(xcb_button_t);
/// By the state of an event, which is that before it.
PointerButtons heldButtonsOf(std::uint16_t state);
/// Absent for a button that is no wheel.
std::optional<ScrollEvent> scrollEventOf(xcb_button_t, Point);

/// Passes one window's pointer events to the client in it. Motion is held back until the turn of
/// the loop ends or another event needs the position, so a fast mouse costs one event per turn.
class PointerTracker {
public:
    /// The modifiers of `KeyModifier` in an event's state.
    using ModifiersIn = std::function<std::uint64_t(std::uint16_t state)>;

    explicit PointerTracker(ModifiersIn modifiersIn) : m_modifiersIn(std::move(modifiersIn)) { }

    void setScale(double pixelsPerPoint) { m_scale = pixelsPerPoint; }
    /// Who receives events from now on: the former client loses the pointer, the new one gets it.
    void setClient(SurfaceClient*);
    /// For an event of this window.
    void handle(const xcb_generic_event_t*);
    /// Whether the pointer has moved since the last call.
    bool endTurn();
    /// The window goes, or a menu takes the pointer. What it did before comes too late from now on.
    void lose();

private:
    void cross(PointerAction, const xcb_enter_notify_event_t&);
    void turnButton(PointerAction, const xcb_button_press_event_t&);
    void deliverMotion();
    void send(const PointerEvent&);
    Point toPoints(std::int16_t x, std::int16_t y) const { return {x / m_scale, y / m_scale}; }

    const ModifiersIn m_modifiersIn;
    SurfaceClient* m_client = nullptr;
    double m_scale = 1;
    Point m_last;
    std::optional<PointerEvent> m_motion;
    bool m_isInside = false;
    bool m_isLost = false; ///< until it comes anew
};

}
