#pragma once

#include <cstddef>
#include <memory>

#include <cairo/cairo.h>

#include "Hosts/Linux/GHandles.h"

namespace quorvel::xdg {

using SurfacePointer = std::unique_ptr<cairo_surface_t, FreeWith<cairo_surface_destroy>>;

/// The memory that the pixels take, in bytes.
std::size_t bytesOf(const SurfacePointer&);

/// An empty square; null for lack of memory.
SurfacePointer makeSquare(int pixels);

/// Draws the picture centred and as large as fits, smoothly, keeping its aspect ratio.
SurfacePointer fitted(cairo_surface_t* picture, int pixels);

}
