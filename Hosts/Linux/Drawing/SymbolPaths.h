#pragma once

#include <cairo/cairo.h>

#include "Quorvel/Platform/Canvas.h"

namespace quorvel::xdg {

/// Paints the symbol in the current colour, fitted into the rectangle of device pixels.
void paintSymbol(cairo_t*, Symbol, const Rect& pixels);

/// Adds a rectangle with round corners; the radius is cut to half the shorter side.
void addRoundedPath(cairo_t*, const Rect&, double radius);
/// Fills what lies between two rectangles with round corners.
void fillBetween(
    cairo_t*, const Rect& outer, double outerRadius, const Rect& inner, double innerRadius);

}
