#pragma once

#include <cmath>

#include "Quorvel/Platform/Dispatch.h"
#include "Quorvel/Platform/Geometry.h"

namespace quorvel {

/// Tells double and triple presses from single ones: they follow each other quickly and in one
/// place. A fourth is a single one again.
class ClickCount {
public:
    static constexpr Duration kLongestPause = seconds(0.4);
    static constexpr double kFarthest = 5; ///< points, on each axis

    explicit ClickCount(const Dispatch& dispatch) : m_dispatch(dispatch) { }

    /// 1, 2 or 3.
    int press(Point at)
    {
        bool isSame = std::abs(at.x - m_place.x) <= kFarthest
            && std::abs(at.y - m_place.y) <= kFarthest
            && m_dispatch.now() - m_last <= kLongestPause;
        m_count = isSame ? m_count % 3 + 1 : 1;
        m_place = at;
        m_last = m_dispatch.now();
        return m_count;
    }

private:
    const Dispatch& m_dispatch;
    int m_count = 0;
    Point m_place;
    Instant m_last;
};

}
