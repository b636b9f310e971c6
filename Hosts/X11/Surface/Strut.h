#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "Hosts/X11/Monitors.h"

namespace quorvel::xdg::x11 {

/// The strip at the bottom of the X screen that a window reserves, in pixels; window managers count
/// it from the edge of the whole X screen.
struct Strut {
    std::uint32_t bottom = 0; ///< 0: none
    std::uint32_t startX = 0;
    std::uint32_t endX = 0; ///< the last column of the strip

    /// For `pixels` at the bottom of a monitor; none where another monitor lies below, since the
    /// strip would cross that one.
    static Strut atBottomOf(
        const Rect& monitor, double pixels, const std::vector<Monitor>& all, Size screenPixels);

    /// Values of _NET_WM_STRUT_PARTIAL; the first four are those of _NET_WM_STRUT.
    std::array<std::uint32_t, 12> values() const
    {
        return {0, 0, 0, bottom, 0, 0, 0, 0, 0, 0, startX, endX};
    }
    friend bool operator==(const Strut&, const Strut&) = default;
};

}
