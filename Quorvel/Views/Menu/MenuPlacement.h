#pragma once

#include "Quorvel/Platform/Geometry.h"

namespace quorvel {

// Pure functions, all in one unit, y downwards.

/// Where a menu of this size opens beside the anchor: above it or, where there is less room, below,
/// and wholly inside the bounds. One that is higher than the room is cut, unless so few rows would
/// be left that it had better cover the anchor.
Rect placeMenu(Size, const Rect& anchor, const Rect& bounds, bool isRightToLeft);

/// Where a submenu opens beside the row of its entry, with its first row level with it: on the side
/// where reading goes on or, where it does not fit there, on the other.
Rect placeSubmenu(Size, const Rect& row, double padding, const Rect& bounds, bool isRightToLeft);

/// Whether a pointer that moves so is on its way to the rectangle beside it, maybe across what lies
/// between.
bool headsFor(Point from, Point to, const Rect&);

}
