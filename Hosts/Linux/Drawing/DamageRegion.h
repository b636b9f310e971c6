#pragma once

#include <vector>

#include "Quorvel/Platform/Geometry.h"

namespace quorvel::xdg {

/// What must be repainted, as a few rectangles of whole pixels that do not overlap.
class DamageRegion {
public:
    void add(const Rect& pixels);
    bool isEmpty() const { return m_rects.empty(); }
    /// The parts within the bounds; none of them is empty.
    std::vector<Rect> take(const Rect& bounds);

private:
    std::vector<Rect> m_rects;
};

}
