#include "Quorvel/Views/Kit/ButtonView.h"

#include <iterator>

#include "Quorvel/Platform/Translation.h"
#include "Quorvel/Views/Kit/Palette.h"

namespace quorvel {

namespace {

constexpr double kKeyFocusWidth = 2;

}

void ButtonView::released(PointerButton button, bool isInside)
{
    bool wasPressed = m_isPressed;
    set(m_isPressed, false);
    auto& tapped = button == PointerButton::middle ? onMiddleTapped : onTapped;
    if (wasPressed && isInside && tapped)
        tapped();
}

bool ButtonView::performAccessibleAction(std::size_t action)
{
    const std::function<void()>* actions[] = {&onTapped, &onSecondaryTapped, &onMiddleTapped};
    if (action >= std::size(actions) || !*actions[action])
        return false;
    (*actions[action])();
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
    auto state = buttonState(std::move(name), tr("Open"));
    state.role = AccessibleRole::menuButton;
    state.menuAction = 0;
    return state;
}

void ButtonView::paintFace(Canvas& canvas, const Rect& face, double radius) const
{
    if (m_isPressed || m_isOpen)
        canvas.fillRounded(face, radius, m_palette.buttonPressedFill);
    else if (m_isHovered)
        canvas.fillRounded(face, radius, m_palette.buttonHoveredFill);
    if (m_palette.hasEdges)
        canvas.strokeRounded(face, radius, 1, m_palette.edge);
    if (m_hasKeyFocus)
        paintKeyFocus(canvas, face, radius, m_palette);
}

void paintKeyFocus(Canvas& canvas, const Rect& face, double radius, const Palette& palette)
{
    canvas.strokeRounded(face, radius, kKeyFocusWidth, palette.accent);
}

}
