#pragma once

#include <cmath>
#include <utility>

#include "Quorvel/Platform/Geometry.h"
#include "Quorvel/Platform/Surfaces.h"

namespace quorvel {

enum class DragPhase { moved, dropped, cancelled };

/// Tells a click of the primary button from a drag: a hand is never quite still.
class DragSource {
public:
    static constexpr double kStillHand = 4; ///< points

    void pressed(PointerButton button)
    {
        m_isPressed = button == PointerButton::primary;
        m_isDragging = false;
    }
    /// True while this press is a drag.
    bool dragged(Point translation)
    {
        m_isDragging = m_isDragging
            || (m_isPressed && std::hypot(translation.x, translation.y) > kStillHand);
        return m_isDragging;
    }
    /// Whether the press that ends here was a drag.
    bool ended()
    {
        m_isPressed = false;
        return std::exchange(m_isDragging, false);
    }

private:
    bool m_isPressed = false;
    bool m_isDragging = false;
};

}
