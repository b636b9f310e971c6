#include "Quorvel/Views/Kit/PushButton.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "Quorvel/Platform/Text.h"
#include "Quorvel/Platform/Translation.h"
#include "Quorvel/Views/Kit/Palette.h"

namespace quorvel {

namespace {

struct PushButtonStyle {
    static constexpr double fontSize = 13;
    static constexpr double radius = 6;
    static constexpr double padding = 14; ///< before and after the title
    static constexpr double leastWidth = 80;
};

}

PushButton::PushButton(const Text& text, const Palette& palette, Kind kind, std::string id)
    : ButtonView(palette)
    , m_measure(text)
    , m_kind(kind)
    , m_id(std::move(id))
{
}

void PushButton::setTitle(const std::string& title)
{
    set(m_title, title);
}

void PushButton::setEnabled(bool isEnabled)
{
    if (!isEnabled)
        pressCancelled();
    set(m_isEnabled, isEnabled);
}

double PushButton::idealWidth() const
{
    TextStyle style;
    style.size = PushButtonStyle::fontSize;
    double title = m_measure.measure(m_title, style).width;
    return std::max(PushButtonStyle::leastWidth, std::ceil(title + 2 * PushButtonStyle::padding));
}

void PushButton::pointerPressed(const PointerPress& press)
{
    if (m_isEnabled)
        ButtonView::pointerPressed(press);
}

bool PushButton::performAccessibleAction(std::size_t action)
{
    return m_isEnabled && ButtonView::performAccessibleAction(action);
}

void PushButton::setKeyFocused(bool isFocused)
{
    ButtonView::setKeyFocused(isFocused);
    invalidate(bounds().inset(-kRing, -kRing));
}

AccessibleState PushButton::accessibleState() const
{
    auto state = buttonState(m_title, tr("Press"));
    state.isEnabled = m_isEnabled;
    return state;
}

Color PushButton::face() const
{
    auto& colors = palette();
    bool isDown = isPressed() && isHovered();
    if (m_kind == Kind::prominent)
        return isDown     ? colors.highlightPressed
            : isHovered() ? colors.highlightHovered
                          : colors.highlight;
    return isDown     ? colors.controlPressedFill
        : isHovered() ? colors.controlHoveredFill
                      : colors.controlFill;
}

void PushButton::paint(Canvas& canvas) const
{
    auto& colors = palette();
    bool isProminent = m_kind == Kind::prominent && m_isEnabled;
    if (m_isEnabled)
        canvas.fillRounded(bounds(), PushButtonStyle::radius, face());
    if (!isProminent || colors.hasEdges)
        canvas.strokeRounded(bounds(), PushButtonStyle::radius, 1, colors.controlEdge);
    canvas.drawText(m_title, bounds(),
        {.size = PushButtonStyle::fontSize,
            .color = !m_isEnabled ? colors.disabledText
                : isProminent     ? colors.highlightedText
                                  : colors.text,
            .alignment = TextAlignment::centre});
    if (hasKeyFocus())
        paintKeyFocus(
            canvas, bounds().inset(-kRing, -kRing), PushButtonStyle::radius + kRing, colors);
}

}
