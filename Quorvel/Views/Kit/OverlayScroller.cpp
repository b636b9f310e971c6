#include "Quorvel/Views/Kit/OverlayScroller.h"

#include <algorithm>
#include <utility>

#include "Quorvel/Views/Kit/Palette.h"

namespace quorvel {

namespace {

struct OverlayScrollerStyle {
    static constexpr double inset = 3;
    static constexpr double width = 5;
    static constexpr double hoveredWidth = 7;
    static constexpr double leastHeight = 28;
    static constexpr double opacity = 0.7;
};

}

OverlayScroller::OverlayScroller(const Palette& palette, Dispatch& dispatch)
    : m_palette(palette)
    , m_dispatch(dispatch)
    , m_fading(dispatch)
{
}

void OverlayScroller::setContent(double contentHeight, double offset)
{
    if (std::exchange(m_contentHeight, contentHeight) == contentHeight && m_offset == offset)
        return;
    m_offset = offset;
    if (mostOffset() <= 0)
        setOpacity(0);
    invalidate();
}

void OverlayScroller::setStrip(const Rect& strip)
{
    m_strip = strip;
    place();
}

/// Without a width it leaves the pointer to what lies below.
void OverlayScroller::place()
{
    bool isHidden = m_opacity == 0;
    auto before = frame();
    setFrame({m_strip.x, m_strip.y, isHidden ? 0 : m_strip.width, m_strip.height});
    if (auto* surface = host(); surface && frame().size() != before.size())
        surface->viewsDidMove();
}

double OverlayScroller::mostOffset() const
{
    return std::max(0.0, m_contentHeight - m_strip.height);
}

Rect OverlayScroller::knob() const
{
    auto track = bounds().inset(OverlayScrollerStyle::inset, OverlayScrollerStyle::inset);
    double width = m_isHovered || m_isPressed ? OverlayScrollerStyle::hoveredWidth
                                              : OverlayScrollerStyle::width;
    double share = m_contentHeight > 0 ? bounds().height / m_contentHeight : 1;
    double height
        = std::min(track.height, std::max(OverlayScrollerStyle::leastHeight, track.height * share));
    double way = mostOffset() > 0 ? std::clamp(m_offset / mostOffset(), 0.0, 1.0) : 0;
    return {
        bounds().centre().x - width / 2, track.y + (track.height - height) * way, width, height};
}

void OverlayScroller::paint(Canvas& canvas) const
{
    auto bar = knob();
    canvas.fillRounded(bar, bar.width / 2,
        m_palette.quietText.withAlpha(OverlayScrollerStyle::opacity * m_opacity));
}

// MARK: When it shows

void OverlayScroller::setOpacity(double opacity)
{
    if (std::exchange(m_opacity, opacity) == opacity)
        return;
    place();
    invalidate();
}

void OverlayScroller::flash()
{
    if (mostOffset() <= 0)
        return;
    m_fading.stop();
    setOpacity(1);
    stay();
}

void OverlayScroller::stay()
{
    m_rest = {};
    if (!m_isHovered && !m_isPressed && m_opacity > 0)
        m_rest = m_dispatch.main().after(kStays, [this] { fade(); });
}

void OverlayScroller::fade()
{
    m_fading.start(m_reducesMotion ? Duration::zero() : kFades, m_frameInterval,
        [this](double share) { setOpacity(1 - share); });
}

// MARK: The pointer

void OverlayScroller::pointerEntered()
{
    m_isHovered = true;
    flash();
    invalidate();
}

void OverlayScroller::pointerExited()
{
    m_isHovered = false;
    stay();
    invalidate();
}

void OverlayScroller::pointerPressed(const PointerPress& press)
{
    m_isPressed = press.button == PointerButton::primary;
    double y = press.pointer.y - frameInRoot().y;
    auto bar = knob();
    double page = y < bar.y ? -bounds().height : y >= bar.maxY() ? bounds().height : 0;
    if (m_isPressed && page != 0 && onScrolled)
        onScrolled(m_offset + page);
    m_offsetWhenPressed = m_offset;
}

void OverlayScroller::dragged(const DragMove& move)
{
    double way = bounds().height - 2 * OverlayScrollerStyle::inset - knob().height;
    if (m_isPressed && way > 0 && onScrolled)
        onScrolled(m_offsetWhenPressed + move.translation.y * mostOffset() / way);
}

void OverlayScroller::released(PointerButton, bool)
{
    m_isPressed = false;
    stay();
    invalidate();
}

}
