#pragma once

#include <cstdint>
#include <vector>

#include <cairo/cairo.h>
#include <xcb/xcb.h>

namespace quorvel::xdg::x11 {

/// Half opaque.
constexpr std::uint32_t kHalfAlpha = 128;

/// The pixels of an ARGB surface that are at least so opaque, as rectangles that do not overlap,
/// sorted by y and then by x. Equal rows share theirs.
std::vector<xcb_rectangle_t> opaqueRectangles(
    cairo_surface_t*, std::uint32_t leastAlpha = kHalfAlpha);

/// Paints this part of `source` on `target` without transparency. Colours of half transparent
/// pixels come out at full strength, since the shape decides what is seen.
void flatten(cairo_surface_t* source, cairo_surface_t* target, const cairo_rectangle_int_t& part);

}
