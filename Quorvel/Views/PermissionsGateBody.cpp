#include "Quorvel/Views/PermissionsGateBody.h"

#include <algorithm>

namespace quorvel {

namespace {

constexpr double kGapBetweenParts = 20;

double widthOfParts(double width)
{
    return std::max(0.0, width - 2 * PermissionsGateBody::kInset);
}

}

double PermissionsGateBody::heightFor(double width) const
{
    double height = kInset;
    for (auto* part : m_parts)
        height += part->heightFor(widthOfParts(width)) + kGapBetweenParts;
    return height;
}

void PermissionsGateBody::appearanceDidChange(bool isRightToLeft)
{
    for (auto* part : m_parts)
        part->appearanceDidChange(isRightToLeft);
    layout();
}

void PermissionsGateBody::layout()
{
    const double width = widthOfParts(bounds().width);
    double y = kInset;
    for (auto* part : m_parts) {
        part->setFrame({kInset, y, width, part->heightFor(width)});
        y = part->frame().maxY() + kGapBetweenParts;
    }
}

}
