#include "Quorvel/Views/MenuButton.h"

namespace quorvel {

namespace {

struct Style {
    Color symbol;
    Color hoveredFill;
    Color pressedFill;

    static const Style& of(bool isDark);
};

const Style& Style::of(bool isDark)
{
    static constexpr Style dark{Color::grey(0.9), Color::grey(1, 0.12), Color::grey(1, 0.2)};
    static constexpr Style light{Color::grey(0.15), Color::grey(0, 0.08), Color::grey(0, 0.15)};
    return isDark ? dark : light;
}

}

void MenuButton::setDark(bool isDark)
{
    set(m_isDark, isDark);
}

void MenuButton::released(PointerButton button, bool isInside)
{
    set(m_isPressed, false);
    if (isInside && button == PointerButton::primary && onTapped)
        onTapped();
}

void MenuButton::paint(Canvas& canvas) const
{
    auto& style = Style::of(m_isDark);
    auto face = bounds().centred({m_metrics.menuButtonWidth, m_metrics.menuButtonHeight});
    if (m_isPressed)
        canvas.fillRounded(face, m_metrics.cornerRadius, style.pressedFill);
    else if (m_isHovered)
        canvas.fillRounded(face, m_metrics.cornerRadius, style.hoveredFill);
    canvas.drawSymbol(Symbol::menuGrid,
        bounds().centred({m_metrics.menuIconSize, m_metrics.menuIconSize}), style.symbol);
}

}
