#pragma once

#include <cstddef>
#include <vector>

#include "Quorvel/Platform/Geometry.h"

namespace quorvel {

/// The positions of a popup and its cards; values only.
struct ThumbnailPopupLayout {
    static constexpr double kArrowHeight = 8;
    static constexpr double kPadding = 8;
    static constexpr double kRadius = 12;
    static constexpr double kArrowHalfWidth = 9;
    static constexpr double kMoreHeight = 22; ///< of the line that counts the hidden windows

    struct Contents {
        std::size_t windowCount = 0;
        std::size_t titleLines = 1; ///< of each card
    };

    Size pictureSize;
    std::vector<Rect> cards; ///< in the popup, origin top left
    std::size_t hiddenCount = 0; ///< windows for which there is no room
    Rect frame; ///< on the screen, points, bottom-left origin
    double arrowX = 0; ///< in the popup

    void pointAt(const Rect& chip);

    /// Above the chip and wholly on its screen; all in points, bottom-left origin.
    static ThumbnailPopupLayout of(
        Contents, const Rect& chip, const Rect& screen, bool isRightToLeft);
};

}
