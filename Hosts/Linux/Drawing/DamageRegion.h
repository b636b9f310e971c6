#pragma once

#include <vector>

#include "Quorvel/Platform/Geometry.h"

namespace quorvel::xdg {

/// What must be repainted, as a few rectangles of whole pixels that do not overlap.
class DamageRegion {
public:
    void add(const Rect& pixels);
    /// Adds a part in points, at `scale` pixels per point.
    void add(const Rect& points, double scale);
    bool isEmpty() const { return m_rects.empty(); }
    /// The parts within the bounds; none of them is empty.
    std::vector<Rect> take(const Rect& bounds);

private:
    std::vector<Rect> m_rects;
};

}
