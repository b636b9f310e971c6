#pragma once

#include <array>
#include <cstddef>

#include "Hosts/Linux/Drawing/CairoHandles.h"

namespace quorvel::xdg {

/// Rounded rectangles as masks, the latest few of them: the chips of a bar have one size, and
/// cairo takes four times as long to fill the outline as to paint through the mask. Main thread.
class RoundedMasks {
public:
    /// Whole pixels, all of them more than 0. Null if a mask of this size would take too much
    /// memory. Valid until the next call.
    cairo_surface_t* mask(int width, int height, double radius);

private:
    struct Mask {
        int width = 0;
        int height = 0;
        double radius = 0;
        CairoSurface surface;
    };

    std::array<Mask, 8> m_masks;
    std::size_t m_oldest = 0;
};

}
