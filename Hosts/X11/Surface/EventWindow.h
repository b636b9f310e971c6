#pragma once

#include <xcb/xcb.h>

#include "Quorvel/Platform/Geometry.h"

namespace quorvel::xdg::x11 {

/// The window whose event this is; 0 for events that no window of ours waits for.
xcb_window_t eventWindow(const xcb_generic_event_t*);

/// What an expose event asks for, in pixels of its window.
Rect exposedPart(const xcb_expose_event_t&);

/// An event of a kind that the caller has looked at.
template <typename Event> const Event& as(const xcb_generic_event_t* event)
{
    return *reinterpret_cast<const Event*>(event);
}

}
