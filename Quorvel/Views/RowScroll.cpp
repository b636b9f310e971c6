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
    , m_glide(dispatch)
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

void RowScroll::stop()
{
    m_motion.stop();
    m_glide.stop();
}

void RowScroll::animate(Animation& motion, double to)
{
    stop();
    motion.start(m_reducesMotion ? Duration::zero() : RowScrollStyle::time, m_frameInterval,
        [this, from = m_offset, to](double share) { scrollTo(from + (to - from) * share); });
}

void RowScroll::step(double direction)
{
    if (onUserScrolls)
        onUserScrolls();
    double sign = m_isRightToLeft ? -direction : direction;
    double distance = sign * std::max(m_itemWidth, m_row.bounds().width * RowScrollStyle::step);
    animate(m_motion, std::clamp(m_offset + distance, 0.0, maximum()));
}

void RowScroll::scrollBy(double distance)
{
    if (onUserScrolls)
        onUserScrolls();
    stop();
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
    stop();
    scrollTo(offsetThatShows(leading + m_offset, frame.width));
}

double RowScroll::offsetThatShows(double start, double width) const
{
    double most = start - ScrollArrow::kWidth;
    double least = start + width + ScrollArrow::kWidth - m_row.bounds().width;
    return std::clamp(std::min(most, std::max(least, m_offset)), 0.0, maximum());
}

void RowScroll::glideTo(double start, double width)
{
    double to = offsetThatShows(start, width);
    if (m_glide.isRunning() && to == m_glideEnd)
        return;
    m_glideEnd = to;
    if (to == m_offset)
        stop();
    else
        animate(m_glide, to);
}

void RowScroll::finishGlide()
{
    if (!m_glide.isRunning())
        return;
    m_glide.stop();
    scrollTo(m_glideEnd);
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

bool RowScroll::setAttention(bool isLeft, bool isRight)
{
    bool isNews = m_backArrow.setTellsAttention(isLeft);
    return m_forwardArrow.setTellsAttention(isRight) || isNews;
}

Rect RowScroll::roomForItems() const
{
    auto row = m_row.bounds();
    double left = m_backArrow.frame().width;
    return {left, 0, std::max(0.0, row.width - left - m_forwardArrow.frame().width), row.height};
}

}
