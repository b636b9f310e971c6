#include "Quorvel/Views/Kit/ColumnView.h"

#include <algorithm>
#include <cmath>

namespace quorvel {

double ColumnView::widthOfParts(double width) const
{
    return std::max(0.0, width - 2 * m_spacing.sides);
}

double ColumnView::heightFor(double width) const
{
    double height = m_spacing.top + m_spacing.bottom;
    for (auto& part : m_parts)
        height += part.gap + std::ceil(part.view->heightFor(widthOfParts(width)));
    return height;
}

void ColumnView::appearanceDidChange(bool isRightToLeft)
{
    for (auto& part : m_parts)
        part.view->appearanceDidChange(isRightToLeft);
    layout();
}

void ColumnView::layout()
{
    const double width = widthOfParts(bounds().width);
    double y = m_spacing.top;
    for (auto& part : m_parts) {
        y += part.gap;
        part.view->setFrame({m_spacing.sides, y, width, std::ceil(part.view->heightFor(width))});
        y = part.view->frame().maxY();
    }
}

}
