#pragma once

#include <cstdint>

#include <xcb/xcb.h>

namespace quorvel::xdg::x11 {

class Connection;

/// Asks the server to report when the selection changes its owner. Returns the number of these
/// events; 0 where the server cannot (no XFIXES).
std::uint8_t selectSelectionEvents(Connection&, xcb_atom_t selection);

/// The selection that the event is about; none for any other event.
xcb_atom_t selectionOf(const xcb_generic_event_t*, std::uint8_t selectionEvent);
/// Its new owner, for an event that is about a selection.
xcb_window_t selectionOwnerIn(const xcb_generic_event_t*);

}
