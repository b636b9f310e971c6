#include "Hosts/X11/Surface/SurfaceContext.h"

#include <cmath>

#include "Hosts/X11/Monitors.h"

namespace quorvel::xdg::x11 {

namespace {

Rect wholePixels(const Rect& rect)
{
    double left = std::round(rect.x);
    double top = std::round(rect.y);
    return {left, top, std::max(1.0, std::round(rect.maxX()) - left),
        std::max(1.0, std::round(rect.maxY()) - top)};
}

}

double SurfaceContext::scale() const
{
    return monitors.coordinates().scale;
}

Rect SurfaceContext::toPixels(const Rect& screenPoints) const
{
    auto& coordinates = monitors.coordinates();
    return wholePixels(coordinates.toPixels(screenPoints.flipped(coordinates.primaryHeight())));
}

}
