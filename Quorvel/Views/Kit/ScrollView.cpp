#include "Quorvel/Views/Kit/ScrollView.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace quorvel {

namespace {

struct ScrollViewStyle {
    static constexpr double notch = 72; ///< of a wheel, in points
    static constexpr double margin = 16; ///< around what is scrolled into view
};

}

ScrollView::ScrollView(
    std::unique_ptr<MeasuredView> content, const Palette& palette, Dispatch& dispatch)
    : m_content(content.get())
{
    addChild(std::move(content));
    m_scroller = &addChild(std::make_unique<OverlayScroller>(palette, dispatch));
    m_scroller->onScrolled = [this](double offset) { scrollBy(offset - m_offset); };
}

void ScrollView::appearanceDidChange(bool isRightToLeft)
{
    m_isRightToLeft = isRightToLeft;
    m_content->appearanceDidChange(isRightToLeft);
    layout();
}

double ScrollView::mostOffset() const
{
    return std::max(0.0, m_content->frame().height - bounds().height);
}

void ScrollView::scrollBy(double distance)
{
    const double offset = std::clamp(std::round(m_offset + distance), 0.0, mostOffset());
    if (std::exchange(m_offset, offset) == offset)
        return;
    place();
    m_scroller->flash();
    if (auto* surface = host())
        surface->viewsDidMove();
}

bool ScrollView::scrolled(const ScrollEvent& event)
{
    if (event.axis() == ScrollAxis::horizontal || mostOffset() == 0)
        return false;
    const bool isInPoints = event.unit == ScrollUnit::points;
    scrollBy(-event.deltaY * (isInPoints ? 1 : ScrollViewStyle::notch));
    return true;
}

void ScrollView::reveal(const View& view)
{
    const auto frame = view.frameInRoot().translated(0, -frameInRoot().y);
    const double below = frame.maxY() + ScrollViewStyle::margin - bounds().height;
    const double above = frame.y - ScrollViewStyle::margin;
    if (above < 0)
        scrollBy(above);
    else if (below > 0)
        scrollBy(std::min(below, above));
}

void ScrollView::layout()
{
    const double width = bounds().width;
    m_content->setFrame({0, -m_offset, width, m_content->heightFor(width)});
    m_offset = std::clamp(m_offset, 0.0, mostOffset());
    place();
}

void ScrollView::place()
{
    m_content->setFrame(Rect::from({0, -m_offset}, m_content->frame().size()));
    constexpr double width = OverlayScroller::kWidth;
    m_scroller->setStrip({m_isRightToLeft ? 0 : bounds().width - width, 0, width, bounds().height});
    m_scroller->setContent(m_content->frame().height, m_offset);
}

}
