#pragma once

#include <vector>

#include "Quorvel/Platform/Geometry.h"

namespace quorvel::xdg {

/// What must be painted anew, as few rectangles of whole pixels that do not overlap.
class DamageRegion {
public:
    void add(const Rect& pixels);
    /// A part in points, of which one is `scale` pixels.
    void add(const Rect& points, double scale);
    bool isEmpty() const { return m_rects.empty(); }
    /// What of it lies within the bounds, each part in it with some area.
    std::vector<Rect> take(const Rect& bounds);

private:
    std::vector<Rect> m_rects;
};

}
