#pragma once

#include <functional>
#include <string>

#include "Quorvel/Platform/Surfaces.h"
#include "Quorvel/Views/Kit/View.h"

namespace quorvel {

enum class DragPhase { moved, dropped, cancelled };

/// What a drag carries, with a name for its kind that no other program uses for something else.
struct DragData {
    std::string type;
    std::string text; ///< UTF-8

    friend bool operator==(const DragData&, const DragData&) = default;
};

/// Tells a click of the primary button from a drag, since a hand is never quite still, and reports
/// the course of the drag. It is told of the presses of the view that has it
/// (`PointerTarget::dragSource`).
class DragSource {
public:
    static constexpr double kStillHand = 4; ///< points

    std::function<void(DragPhase, const DragMove&)> onDrag;
    /// What the view offers; empty where a drag means the view itself.
    DragData data;

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
