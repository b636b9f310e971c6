#pragma once

#include <functional>

#include "Quorvel/Platform/Surfaces.h"
#include "Quorvel/Views/Kit/View.h"

namespace quorvel {

enum class DragPhase { moved, dropped, cancelled };

/// Tells a click of the primary button from a drag, since a hand is never quite still, and reports
/// the course of the drag. A view passes its presses on to it.
class DragSource {
public:
    static constexpr double kStillHand = 4; ///< points

    std::function<void(DragPhase, const DragMove&)> onDrag;

    void pressed(PointerButton);
    /// True while this press is a drag.
    bool dragged(const DragMove&);
    /// Both return whether the press that ends here was a drag.
    bool released() { return end(DragPhase::dropped); }
    bool cancelled() { return end(DragPhase::cancelled); }
    bool isDragging() const { return m_isDragging; }

private:
    bool end(DragPhase);
    void report(DragPhase);

    bool m_isPressed = false;
    bool m_isDragging = false;
    DragMove m_move;
};

}
