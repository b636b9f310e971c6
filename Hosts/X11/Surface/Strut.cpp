#include "Hosts/X11/Surface/Strut.h"

#include <algorithm>
#include <cmath>

namespace quorvel::xdg::x11 {

Strut Strut::atBottomOf(
    const Rect& monitor, double pixels, const std::vector<Monitor>& all, Size screenPixels)
{
    if (pixels <= 0 || monitor.isEmpty() || hasMonitorBelow(monitor, all))
        return {};
    double gap = std::max(0.0, screenPixels.height - monitor.maxY());
    return {static_cast<std::uint32_t>(std::lround(gap + pixels)),
        static_cast<std::uint32_t>(std::lround(std::max(0.0, monitor.x))),
        static_cast<std::uint32_t>(std::lround(std::max(1.0, monitor.maxX()) - 1))};
}

}
