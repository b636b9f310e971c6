#include "Quorvel/Views/StatusBadge.h"

#include <cmath>
#include <utility>

#include "Quorvel/Platform/Text.h"
#include "Quorvel/Platform/Translation.h"
#include "Quorvel/Views/Kit/Mirrored.h"
#include "Quorvel/Views/Kit/Palette.h"

namespace quorvel {

namespace {

struct StatusBadgeStyle {
    static constexpr double fontSize = 12;
    static constexpr double inset = 10;
    static constexpr double symbol = 14;
    static constexpr double symbolInset = 6;
    static constexpr double gap = 4; ///< from the symbol to the text
};

constexpr double kTextBehindSymbol
    = StatusBadgeStyle::symbolInset + StatusBadgeStyle::symbol + StatusBadgeStyle::gap;

TextStyle textStyle()
{
    return {.size = StatusBadgeStyle::fontSize, .weight = FontWeight::medium, .color = {}};
}

}

void StatusBadge::setGranted(bool isGranted)
{
    if (std::exchange(m_isGranted, isGranted) != isGranted)
        invalidate();
}

void StatusBadge::setRightToLeft(bool isRightToLeft)
{
    if (std::exchange(m_isRightToLeft, isRightToLeft) != isRightToLeft)
        invalidate();
}

std::string StatusBadge::text() const
{
    return m_isGranted ? tr("Granted") : tr("Required");
}

double StatusBadge::idealWidth() const
{
    double leading = m_isGranted ? kTextBehindSymbol : StatusBadgeStyle::inset;
    return std::ceil(
        leading + m_measure.measure(text(), textStyle()).width + StatusBadgeStyle::inset);
}

AccessibleState StatusBadge::accessibleState() const
{
    AccessibleState state;
    state.role = AccessibleRole::label;
    state.name = text();
    return state;
}

void StatusBadge::paint(Canvas& canvas) const
{
    auto place = [this](const Rect& rect) {
        return m_isRightToLeft ? mirrored(rect, bounds().width) : rect;
    };
    auto& ink = m_isGranted ? m_palette.granted : m_palette.wanting;
    double height = bounds().height;
    canvas.fillRounded(
        bounds(), height / 2, m_isGranted ? m_palette.grantedFill : m_palette.wantingFill);
    if (m_palette.hasEdges)
        canvas.strokeRounded(bounds(), height / 2, 1, ink);
    if (m_isGranted) {
        canvas.drawSymbol(Symbol::checkmarkCircle,
            place({StatusBadgeStyle::symbolInset, (height - StatusBadgeStyle::symbol) / 2,
                StatusBadgeStyle::symbol, StatusBadgeStyle::symbol}),
            ink);
    }
    double x = m_isGranted ? kTextBehindSymbol : StatusBadgeStyle::inset;
    auto style = textStyle();
    style.color = ink;
    canvas.drawText(
        text(), place({x, 0, bounds().width - x - StatusBadgeStyle::inset, height}), style);
}

}
