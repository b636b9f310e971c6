#pragma once

#include <xcb/xcb.h>

#include "Quorvel/Platform/Geometry.h"

namespace quorvel::xdg::x11 {

/// The window that the event belongs to; 0 for events that concern no window of ours.
xcb_window_t eventWindow(const xcb_generic_event_t*);

/// The area that an expose event reports, in pixels of its window.
Rect exposedPart(const xcb_expose_event_t&);

/// The event as its own type; the caller has checked which it is.
template <typename Event> const Event& as(const xcb_generic_event_t* event)
{
    return *reinterpret_cast<const Event*>(event);
}

}
