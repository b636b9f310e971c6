#include "Quorvel/Views/SelectableRowView.h"

#include <utility>

#include "Quorvel/Views/Kit/Palette.h"

namespace quorvel {

namespace {

struct SelectableRowViewStyle {
    static constexpr double radius = 6;
    static constexpr double liftedOpacity = 0.9;
};

}

double SelectableRowView::paintOpacity() const
{
    return isLifted() ? SelectableRowViewStyle::liftedOpacity : 1;
}

void SelectableRowView::paint(Canvas& canvas) const
{
    auto face = bounds();
    if (isLifted()) {
        canvas.fillRounded(face, SelectableRowViewStyle::radius, m_palette.ground);
        canvas.fillRounded(face, SelectableRowViewStyle::radius, m_palette.buttonPressedFill);
        canvas.strokeRounded(face, SelectableRowViewStyle::radius, 1, m_palette.edge);
    } else if (looksSelected()) {
        canvas.fillRounded(face, SelectableRowViewStyle::radius, m_palette.highlight);
    } else if (m_isPressed || m_isHovered) {
        canvas.fillRounded(face, SelectableRowViewStyle::radius,
            m_isPressed ? m_palette.buttonPressedFill : m_palette.buttonHoveredFill);
    }
    if (m_isHovered && looksSelected())
        canvas.strokeRounded(face, SelectableRowViewStyle::radius, 1, m_palette.edge);
}

void SelectableRowView::pointerEntered()
{
    m_isHovered = true;
    invalidate();
}

void SelectableRowView::pointerExited()
{
    m_isHovered = false;
    invalidate();
}

void SelectableRowView::setPressed(bool isPressed)
{
    if (std::exchange(m_isPressed, isPressed) != isPressed)
        invalidate();
}

void SelectableRowView::pointerPressed(const PointerPress& press)
{
    setPressed(press.button == PointerButton::primary);
}

}
