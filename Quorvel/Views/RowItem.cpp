#include "Quorvel/Views/RowItem.h"

#include <cmath>
#include <string>

#include "Quorvel/Views/Kit/Palette.h"

namespace quorvel {

namespace {

struct RowItemStyle {
    static constexpr double numberMargin = 2;
    static constexpr double numberSize = 0.46; ///< share of the height inside the margin
    static constexpr double numberCorner = 0.25; ///< share of its size
    static constexpr double numberTextSize = 0.78; ///< share of its size
};

}

void RowItem::invalidateLifted()
{
    constexpr double share = (kLiftedScale - 1) / 2;
    invalidate(bounds().inset(
        -std::ceil(frame().width * share) - 1, -std::ceil(frame().height * share) - 1));
}

void RowItem::pressed(PointerButton button)
{
    drag.pressed(button);
    ButtonView::pressed(button);
}

void RowItem::dragged(const DragMove& move)
{
    if (drag.dragged(move))
        ButtonView::pressCancelled();
}

void RowItem::released(PointerButton button, bool isInside)
{
    if (!drag.released())
        ButtonView::released(button, isInside);
}

void RowItem::pressCancelled()
{
    ButtonView::pressCancelled();
    drag.cancelled();
}

void RowItem::setFilesOver(bool areOver)
{
    set(m_hasFilesOver, areOver);
    if (onFilesOver)
        onFilesOver(areOver);
}

void RowItem::paint(Canvas& canvas) const
{
    if (!m_isLifted) {
        paintItem(canvas);
        return paintNumber(canvas);
    }
    canvas.save();
    canvas.magnify(kLiftedScale, bounds().centre());
    canvas.beginOpacity(kLiftedOpacity);
    paintItem(canvas);
    canvas.endOpacity();
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
