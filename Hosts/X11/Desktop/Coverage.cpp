#include "Hosts/X11/Desktop/Coverage.h"

#include <algorithm>

namespace quorvel::xdg::x11 {

namespace {

bool isCovered(const DesktopModel& model, const Rect& monitor)
{
    for (auto id : model.frontToBack) {
        auto* window = model.window(id);
        bool counts = window && window->isStandard && window->layer == 0 && !window->isMinimized
            && window->isOn(model.activeSpace) && window->frame.intersects(monitor);
        if (counts)
            return window->isFullScreen && window->frame.contains(monitor);
    }
    return false;
}

}

std::map<DisplayNumber, bool> coveredMonitors(
    const DesktopModel& model, const std::vector<Monitor>& monitors, const Coordinates& coordinates)
{
    bool hasFullScreen = std::ranges::any_of(
        model.windows, [](const auto& entry) { return entry.second.isFullScreen; });
    std::map<DisplayNumber, bool> covered;
    for (auto& monitor : monitors)
        covered[monitor.number]
            = hasFullScreen && isCovered(model, coordinates.toPoints(monitor.pixels));
    return covered;
}

}
