#pragma once

#include <cairo/cairo.h>

#include "Quorvel/Platform/Image.h"

namespace quorvel::xdg {

/// A picture that this host's canvas can draw. Main thread.
struct IconImage : PlatformImage {
    /// The picture fitted into a square of this many pixels, kept for the next call with the same
    /// size. The image owns the surface; null when it cannot be drawn.
    virtual cairo_surface_t* rendered(int pixels) const = 0;
};

}
