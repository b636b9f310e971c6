#include "Quorvel/Views/Kit/ButtonView.h"

namespace quorvel {

namespace {

struct Style {
    Color hoveredFill;
    Color pressedFill;
    Color keyFocus;

    static constexpr double keyFocusWidth = 2;

    static const Style& of(bool isDark);
};

const Style& Style::of(bool isDark)
{
    static constexpr Style dark{Color::grey(1, 0.12), Color::grey(1, 0.2), Color{0.30, 0.60, 1.0}};
    static constexpr Style light{
        Color::grey(0, 0.08), Color::grey(0, 0.15), Color{0.05, 0.42, 0.87}};
    return isDark ? dark : light;
}

}

void ButtonView::released(PointerButton button, bool isInside)
{
    set(m_isPressed, false);
    if (isInside && button == PointerButton::primary && onTapped)
        onTapped();
}

bool ButtonView::performAccessibleAction(std::size_t action)
{
    auto& perform = action == 0 ? onTapped : onSecondaryTapped;
    if (action > 1 || !perform)
        return false;
    perform();
    return true;
}

AccessibleState ButtonView::buttonState(std::string name, std::string action) const
{
    return {.role = AccessibleRole::button,
        .name = std::move(name),
        .progress = {},
        .isSelected = false,
        .hasKeyFocus = m_hasKeyFocus,
        .actions = {std::move(action)}};
}

AccessibleState ButtonView::menuButtonState(std::string name) const
{
    auto state = buttonState(std::move(name), "Open");
    state.role = AccessibleRole::menuButton;
    state.menuAction = 0;
    return state;
}

void ButtonView::paintFace(Canvas& canvas, const Rect& face, double radius) const
{
    auto& style = Style::of(m_isDark);
    if (m_isPressed)
        canvas.fillRounded(face, radius, style.pressedFill);
    else if (m_isHovered)
        canvas.fillRounded(face, radius, style.hoveredFill);
    if (m_hasKeyFocus)
        paintKeyFocus(canvas, face, radius, m_isDark);
}

void paintKeyFocus(Canvas& canvas, const Rect& face, double radius, bool isDark)
{
    canvas.strokeRounded(face, radius, Style::keyFocusWidth, Style::of(isDark).keyFocus);
}

}
