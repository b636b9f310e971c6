#include "Quorvel/Views/RowItem.h"

#include <algorithm>
#include <string>

#include "Quorvel/Views/Kit/Palette.h"
#include "Quorvel/Views/Kit/Shadow.h"

namespace quorvel {

namespace {

struct RowItemStyle {
    static constexpr double liftedScale = 1.05;
    static constexpr double overTargetScale = 0.6;
    static constexpr double edgeWidth = 1;
    static constexpr double numberMargin = 2;
    static constexpr double numberSize = 0.46; ///< share of the height inside the margin
    static constexpr double numberCorner = 0.25; ///< share of its size
    static constexpr double numberTextSize = 0.78; ///< share of its size
};

}

Rect RowItem::paintFrame() const
{
    if (!isLifted())
        return frame();
    constexpr double share = (RowItemStyle::liftedScale - 1) / 2;
    double reach = kShadowReach * RowItemStyle::liftedScale + 1;
    return frame().inset(-frame().width * share - reach, -frame().height * share - reach);
}

void RowItem::setLift(Lift lift)
{
    if (lift == m_lift)
        return;
    invalidatePaint();
    m_lift = lift;
    invalidatePaint();
}

void RowItem::setFilesOver(bool areOver)
{
    set(m_hasFilesOver, areOver);
    if (onFilesOver)
        onFilesOver(areOver);
}

void RowItem::paint(Canvas& canvas) const
{
    if (isLifted())
        return paintLifted(canvas);
    paintItem(canvas);
    paintNumber(canvas);
}

void RowItem::paintLifted(Canvas& canvas) const
{
    double radius = m_metrics.chipCornerRadius;
    canvas.save();
    double scale = isOverTarget() ? RowItemStyle::overTargetScale : RowItemStyle::liftedScale;
    canvas.magnify(scale, bounds().centre());
    // Cut at the edge of the bar it would look like a fault.
    double room = (bounds().height / scale - face().height) / 2;
    paintShadow(canvas, face(), radius, std::clamp(room, 0.0, kShadowReach), palette());
    canvas.fillRounded(face(), radius, palette().ground);
    paintItem(canvas);
    canvas.strokeRounded(face(), radius, RowItemStyle::edgeWidth, palette().popupEdge);
    canvas.restore();
}

/// In the leading upper corner, opposite to the badge.
void RowItem::paintNumber(Canvas& canvas) const
{
    if (m_number == 0)
        return;
    auto place = face().inset(RowItemStyle::numberMargin, RowItemStyle::numberMargin);
    double size = place.height * RowItemStyle::numberSize;
    Rect mark{m_isRightToLeft ? place.maxX() - size : place.x, place.y, size, size};
    canvas.fillRounded(mark, size * RowItemStyle::numberCorner, palette().highlight);
    canvas.drawText(std::to_string(m_number), mark,
        {.size = size * RowItemStyle::numberTextSize,
            .weight = FontWeight::semibold,
            .color = palette().highlightedText,
            .alignment = TextAlignment::centre});
}

void RowItem::paintRing(Canvas& canvas) const
{
    if (m_hasFilesOver || hasKeyFocus())
        paintKeyFocus(canvas, face(), m_metrics.chipCornerRadius, palette());
}

}
