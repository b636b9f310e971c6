#pragma once

#include <array>
#include <cstddef>

#include "Hosts/Linux/Drawing/CairoHandles.h"

namespace quorvel::xdg {

/// Rounded rectangles and the lines along their edges as masks, the latest few of them: the chips
/// of a bar have one size, and cairo takes four times as long to fill the outline as to paint
/// through the mask. Main thread.
class RoundedMasks {
public:
    /// Pixels.
    struct Shape {
        int width = 0; ///< more than 0, as the height
        int height = 0;
        double radius = 0;
        double line = 0; ///< along the edge, inside; 0: all of it is filled

        friend bool operator==(const Shape&, const Shape&) = default;
    };

    /// Null if a mask of this size would take too much memory. Valid until the next call.
    cairo_surface_t* mask(const Shape&);

private:
    struct Mask {
        Shape shape;
        CairoSurface surface;
    };

    std::array<Mask, 16> m_masks;
    std::size_t m_oldest = 0;
};

}
