#include "Quorvel/Views/ChipView.h"

#include <utility>

namespace quorvel {

namespace {

struct Style {
    Color text;
    Color fill;
    Color hoveredFill;
    Color pressedFill;
    Color focusedFill;
    Color focusedHoveredFill;
    Color edge;
    Color focusMark;

    static constexpr double minimizedOpacity = 0.5;
    static constexpr double minimumTitleWidth = 22;
    static constexpr double focusMarkHeight = 2;
    static constexpr double focusMarkWidth = 0.4; ///< share of the chip's width
    static constexpr double edgeWidth = 1;

    static const Style& of(bool isDark);
};

constexpr Color kAccent{0.30, 0.60, 1.0};
constexpr Color kAccentOnLight{0.05, 0.42, 0.87};

const Style& Style::of(bool isDark)
{
    static constexpr Style dark{
        .text = Color::grey(0.93),
        .fill = Color::grey(1, 0.055),
        .hoveredFill = Color::grey(1, 0.115),
        .pressedFill = Color::grey(1, 0.075),
        .focusedFill = Color::grey(1, 0.19),
        .focusedHoveredFill = Color::grey(1, 0.24),
        .edge = Color::grey(1, 0.09),
        .focusMark = kAccent,
    };
    static constexpr Style light{
        .text = Color::grey(0.1),
        .fill = Color::grey(0, 0.045),
        .hoveredFill = Color::grey(0, 0.09),
        .pressedFill = Color::grey(0, 0.13),
        .focusedFill = Color::grey(1, 0.95),
        .focusedHoveredFill = Color::grey(1, 1),
        .edge = Color::grey(0, 0.10),
        .focusMark = kAccentOnLight,
    };
    return isDark ? dark : light;
}

/// Text sizes follow the chip's height, as the rest of the metrics do.
double titleSize(const BarMetrics& metrics)
{
    return metrics.chipHeight * 0.45;
}

}

double ChipView::fullWidth(const BarMetrics& metrics)
{
    return iconWidth(metrics) + metrics.iconTextSpacing + metrics.titleMaxWidth;
}

double ChipView::iconWidth(const BarMetrics& metrics)
{
    return 2 * metrics.chipHorizontalPadding + metrics.iconSize;
}

void ChipView::setData(ChipData data)
{
    if (data == m_data)
        return;
    m_data = std::move(data);
    invalidate();
}

void ChipView::setDark(bool isDark)
{
    if (std::exchange(m_isDark, isDark) != isDark)
        invalidate();
}

void ChipView::setRightToLeft(bool isRightToLeft)
{
    if (std::exchange(m_isRightToLeft, isRightToLeft) != isRightToLeft)
        invalidate();
}

void ChipView::setHovered(bool isHovered)
{
    if (std::exchange(m_isHovered, isHovered) != isHovered)
        invalidate();
}

void ChipView::setPressed(bool isPressed)
{
    if (std::exchange(m_isPressed, isPressed) != isPressed)
        invalidate();
}

void ChipView::pressed(PointerButton button)
{
    setPressed(button != PointerButton::secondary);
}

void ChipView::pressCancelled()
{
    setPressed(false);
}

void ChipView::released(PointerButton button, bool isInside)
{
    setPressed(false);
    if (!isInside || !onClick)
        return;
    if (button == PointerButton::primary)
        onClick(m_data, Click::primary);
    else if (button == PointerButton::middle)
        onClick(m_data, Click::middle);
}

std::string_view ChipView::title() const
{
    return m_data.windowTitle.empty() ? m_data.appName : m_data.windowTitle;
}

ChipView::Parts ChipView::parts() const
{
    Parts parts;
    auto face = bounds().centred({bounds().width, m_metrics.chipHeight});
    parts.face = face;
    Size icon{m_metrics.iconSize, m_metrics.iconSize};
    double padding = m_metrics.chipHorizontalPadding;
    parts.icon = Rect{padding, face.y, icon.width, face.height}.centred(icon);
    double left = parts.icon.maxX() + m_metrics.iconTextSpacing;
    double width = face.width - padding - left;
    if (width >= Style::minimumTitleWidth)
        parts.title = {left, face.y, width, face.height};
    else
        parts.icon = face.centred(icon);
    if (m_isRightToLeft) {
        parts.icon.x = face.width - parts.icon.maxX();
        parts.title.x = face.width - parts.title.maxX();
    }
    double mark = face.width * Style::focusMarkWidth;
    parts.focusMark = {(face.width - mark) / 2, face.maxY() - Style::focusMarkHeight, mark,
        Style::focusMarkHeight};
    return parts;
}

void ChipView::paint(Canvas& canvas) const
{
    auto& style = Style::of(m_isDark);
    auto layout = parts();
    auto fill = m_isPressed ? style.pressedFill : m_isHovered ? style.hoveredFill : style.fill;
    if (m_data.isFocused && !m_isPressed)
        fill = m_isHovered ? style.focusedHoveredFill : style.focusedFill;
    canvas.fillRounded(layout.face, m_metrics.chipCornerRadius, fill);
    if (m_data.isFocused || m_isHovered)
        canvas.strokeRounded(layout.face, m_metrics.chipCornerRadius, Style::edgeWidth, style.edge);

    if (m_data.isMinimized)
        canvas.beginOpacity(Style::minimizedOpacity);
    canvas.drawImage(m_data.icon, layout.icon);
    if (!layout.title.isEmpty()) {
        canvas.drawText(title(), layout.title,
            {.size = titleSize(m_metrics), .weight = FontWeight::regular, .color = style.text});
    }
    if (m_data.isMinimized)
        canvas.endOpacity();
    if (m_data.isFocused)
        canvas.fillRounded(layout.focusMark, Style::focusMarkHeight / 2, style.focusMark);
}

}
