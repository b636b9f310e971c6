#pragma once

#include <algorithm>

#include "Quorvel/Platform/Geometry.h"

namespace quorvel {

/// A bar that has slid down behind the lower edge of its frame. The panel becomes lower, and its
/// content hangs from its upper edge: moved down as it is, it would be seen on a display below. A
/// panel of no height there cannot be, so the content of one that has gone whole hangs below it;
/// were it hidden, screen readers would not find it.
struct PanelSlide {
    Rect panel; ///< points, bottom-left origin, as `frame`
    Rect content; ///< points, origin at the panel's bottom left
    bool isGone = false;

    /// `frame` is that of the whole bar; `share` of its height is hidden.
    static constexpr PanelSlide of(const Rect& frame, double share)
    {
        const double seen = std::max(1.0, frame.height * (1 - share));
        const bool isGone = share >= 1;
        const double top = isGone ? 0 : seen;
        return {.panel = {frame.x, frame.y, frame.width, seen},
            .content = {0, top - frame.height, frame.width, frame.height},
            .isGone = isGone};
    }
};

}
