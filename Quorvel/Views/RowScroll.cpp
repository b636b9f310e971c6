#include "Quorvel/Views/RowScroll.h"

#include <algorithm>
#include <utility>

#include "Quorvel/Views/ScrollArrow.h"

namespace quorvel {

namespace {

struct RowScrollStyle {
    static constexpr double step = 0.6; ///< of the row's width, for a click on an arrow
    static constexpr Duration time = seconds(0.2);
};

}

RowScroll::RowScroll(View& row, const Palette& palette, Dispatch& dispatch)
    : m_row(row)
    , m_backArrow(row.addChild(std::make_unique<ScrollArrow>(palette, ScrollArrow::Towards::left)))
    , m_forwardArrow(
          row.addChild(std::make_unique<ScrollArrow>(palette, ScrollArrow::Towards::right)))
    , m_motion(dispatch)
{
    m_backArrow.onTapped = [this] { step(-1); };
    m_forwardArrow.onTapped = [this] { step(1); };
    m_backArrow.onPointerLeft = m_forwardArrow.onPointerLeft = [this] {
        if (onScrolled)
            onScrolled();
    };
}

void RowScroll::setContent(double width, double itemWidth)
{
    m_contentWidth = width;
    m_itemWidth = itemWidth;
    m_offset = std::clamp(m_offset, 0.0, maximum());
}

double RowScroll::maximum() const
{
    return std::max(0.0, m_contentWidth - m_row.bounds().width);
}

void RowScroll::step(double direction)
{
    double sign = m_isRightToLeft ? -direction : direction;
    double from = m_offset;
    double distance = sign * std::max(m_itemWidth, m_row.bounds().width * RowScrollStyle::step);
    double to = std::clamp(from + distance, 0.0, maximum());
    m_motion.start(m_reducesMotion ? Duration::zero() : RowScrollStyle::time, m_frameInterval,
        [this, from, to](double share) { scrollTo(from + (to - from) * share); });
}

void RowScroll::scrollBy(double distance)
{
    m_motion.stop();
    scrollTo(m_offset + distance);
}

void RowScroll::scrollBy(double distance, ScrollUnit unit)
{
    scrollBy(unit == ScrollUnit::notches ? distance * m_itemWidth : distance);
}

void RowScroll::scrollTo(double offset)
{
    offset = std::clamp(offset, 0.0, maximum());
    if (std::exchange(m_offset, offset) != offset && onScrolled)
        onScrolled();
}

void RowScroll::reveal(const Rect& frame)
{
    double width = m_row.bounds().width;
    double leading = m_isRightToLeft ? width - frame.maxX() : frame.x;
    double trailing = leading + frame.width;
    if (leading < ScrollArrow::kWidth)
        scrollBy(leading - ScrollArrow::kWidth);
    else if (trailing > width - ScrollArrow::kWidth)
        scrollBy(trailing - width + ScrollArrow::kWidth);
}

void RowScroll::placeArrows(bool isHeld)
{
    bool hasBefore = m_offset > 0;
    bool hasAfter = m_offset < maximum();
    if (m_isRightToLeft)
        std::swap(hasBefore, hasAfter);
    if (std::exchange(m_offsetOfArrows, m_offset) == m_offset && isHeld) {
        hasBefore &= !m_backArrow.frame().isEmpty();
        hasAfter &= !m_forwardArrow.frame().isEmpty();
    }
    // A click too many on an arrow must not meet the chip below.
    hasBefore |= m_backArrow.isHovered();
    hasAfter |= m_forwardArrow.isHovered();
    auto row = m_row.bounds();
    auto place = [&](ScrollArrow& arrow, bool isShown, double x) {
        arrow.setFrame({x, 0, isShown ? ScrollArrow::kWidth : 0, row.height});
    };
    place(m_backArrow, hasBefore, 0);
    place(m_forwardArrow, hasAfter, row.width - (hasAfter ? ScrollArrow::kWidth : 0));
}

Rect RowScroll::roomForItems() const
{
    auto row = m_row.bounds();
    double left = m_backArrow.frame().width;
    return {left, 0, std::max(0.0, row.width - left - m_forwardArrow.frame().width), row.height};
}

}
