#pragma once

#include <cstdint>

#include <xcb/xcb.h>

namespace quorvel::xdg::x11 {

class Connection;

/// Lets the server tell when the selection has another owner or none. The number of these events; 0
/// where it tells nothing of selections (no XFIXES).
std::uint8_t selectSelectionEvents(Connection&, xcb_atom_t selection);

/// The selection that the event is about; none for every other event.
xcb_atom_t selectionOf(const xcb_generic_event_t*, std::uint8_t selectionEvent);
/// Its owner now, in an event that is about one.
xcb_window_t selectionOwnerIn(const xcb_generic_event_t*);

}
