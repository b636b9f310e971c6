#include "Quorvel/Views/RowItem.h"

#include <cmath>

#include "Quorvel/Views/Kit/Palette.h"

namespace quorvel {

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

void RowItem::paint(Canvas& canvas) const
{
    if (!m_isLifted)
        return paintItem(canvas);
    canvas.save();
    canvas.magnify(kLiftedScale, bounds().centre());
    canvas.beginOpacity(kLiftedOpacity);
    paintItem(canvas);
    canvas.endOpacity();
    canvas.restore();
}

void RowItem::paintRing(Canvas& canvas) const
{
    if (m_hasFilesOver || hasKeyFocus())
        paintKeyFocus(canvas, face(), m_metrics.chipCornerRadius, palette());
}

}
