#include "Quorvel/Views/Kit/DragSource.h"

#include <cmath>
#include <utility>

namespace quorvel {

void DragSource::pressed(PointerButton button)
{
    m_isPressed = button == PointerButton::primary;
    m_isDragging = false;
}

bool DragSource::dragged(const DragMove& move)
{
    auto& [x, y] = move.translation;
    m_isDragging = m_isDragging || (m_isPressed && std::hypot(x, y) > kStillHand);
    if (!m_isDragging)
        return false;
    m_move = move;
    report(DragPhase::moved);
    return true;
}

bool DragSource::end(DragPhase phase)
{
    m_isPressed = false;
    bool wasDragging = std::exchange(m_isDragging, false);
    if (wasDragging)
        report(phase);
    return wasDragging;
}

void DragSource::report(DragPhase phase)
{
    if (onDrag)
        onDrag(phase, m_move);
}

}
