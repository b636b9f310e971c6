#pragma once

#include <vector>

#include "Quorvel/Platform/Geometry.h"

namespace quorvel::x11 {

/// What must be painted anew, as few rectangles of whole pixels that do not overlap.
class DamageRegion {
public:
    void add(const Rect& pixels);
    bool isEmpty() const { return m_rects.empty(); }
    std::vector<Rect> take();

private:
    std::vector<Rect> m_rects;
};

}
