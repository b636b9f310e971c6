#pragma once

#include "Quorvel/Platform/Geometry.h"

namespace quorvel {

// Pure functions, all in one unit, y downwards.

/// Where a menu of this size opens beside the anchor: above it or, where there is less room, below,
/// and wholly inside the bounds. A menu higher than the room is cut, unless so few rows would be
/// left that covering the anchor is better.
Rect placeMenu(Size, const Rect& anchor, const Rect& bounds, bool isRightToLeft);

/// Where a submenu opens beside its entry's row, with its first row level with that row: on the
/// side in reading direction or, if it does not fit there, on the other.
Rect placeSubmenu(Size, const Rect& row, double padding, const Rect& bounds, bool isRightToLeft);

/// Whether a pointer with this movement is on its way to the rectangle beside it, perhaps across
/// what lies between.
bool headsFor(Point from, Point to, const Rect&);

}
