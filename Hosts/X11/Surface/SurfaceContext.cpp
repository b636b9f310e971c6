#include "Hosts/X11/Surface/SurfaceContext.h"

#include <cmath>

#include "Hosts/X11/Keyboard.h"
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

std::function<std::uint64_t(std::uint16_t state)> SurfaceContext::modifiersIn() const
{
    return [&keys = keyboard](std::uint16_t state) { return keys.modifiers().modifiersIn(state); };
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
