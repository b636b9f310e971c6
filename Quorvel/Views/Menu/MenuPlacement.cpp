#include "Quorvel/Views/Menu/MenuPlacement.h"

#include <algorithm>

namespace quorvel {

namespace {

/// Some five rows: with less in sight one loses one's way.
constexpr double kLeastRoom = 140;

double inside(double start, double length, double from, double to)
{
    return std::max(from, std::min(start, to - length));
}

}

Rect placeMenu(Size size, const Rect& anchor, const Rect& bounds, bool isRightToLeft)
{
    double roomAbove = anchor.y - bounds.y;
    double roomBelow = bounds.maxY() - anchor.maxY();
    bool opensUp = roomAbove >= size.height || roomAbove >= roomBelow;
    double room = std::min(bounds.height, std::max({roomAbove, roomBelow, kLeastRoom}));
    double height = std::min(size.height, room);
    double width = std::min(size.width, bounds.width);
    double y = opensUp ? anchor.y - height : anchor.maxY();
    double x = isRightToLeft ? anchor.maxX() - width : anchor.x;
    return {inside(x, width, bounds.x, bounds.maxX()), inside(y, height, bounds.y, bounds.maxY()),
        width, height};
}

Rect placeSubmenu(
    Size size, const Rect& row, double padding, const Rect& bounds, bool isRightToLeft)
{
    double width = std::min(size.width, bounds.width);
    double left = row.x - width;
    double right = row.maxX();
    bool fitsLeft = left >= bounds.x;
    bool fitsRight = right + width <= bounds.maxX();
    bool opensLeft = isRightToLeft ? fitsLeft || !fitsRight : fitsLeft && !fitsRight;
    double height = std::min(size.height, bounds.height);
    return {inside(opensLeft ? left : right, width, bounds.x, bounds.maxX()),
        inside(row.y - padding, height, bounds.y, bounds.maxY()), width, height};
}

bool headsFor(Point from, Point to, const Rect& target)
{
    double edge = target.x >= from.x ? target.x : target.maxX();
    double whole = edge - from.x;
    double part = whole == 0 ? 0 : (to.x - from.x) / whole;
    if (part <= 0 || part > 1)
        return false;
    // Between the lines to the two corners of the near edge.
    double top = from.y + (target.y - from.y) * part;
    double bottom = from.y + (target.maxY() - from.y) * part;
    return to.y >= top && to.y <= bottom;
}

}
