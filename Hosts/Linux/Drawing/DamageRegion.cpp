#include "Hosts/Linux/Drawing/DamageRegion.h"

#include <cmath>
#include <utility>

namespace quorvel::xdg {

namespace {

constexpr std::size_t kMostRects = 16;
/// Two parts become one when that paints at most this much more than both.
constexpr double kWorthMerging = 1.2;

Rect wholePixels(const Rect& rect)
{
    double left = std::floor(rect.x);
    double top = std::floor(rect.y);
    return {left, top, std::ceil(rect.maxX()) - left, std::ceil(rect.maxY()) - top};
}

bool shouldMerge(const Rect& a, const Rect& b)
{
    return a.intersects(b) || a.united(b).area() <= (a.area() + b.area()) * kWorthMerging;
}

}

void DamageRegion::add(const Rect& pixels)
{
    if (pixels.isEmpty())
        return;
    auto rect = wholePixels(pixels);
    for (std::size_t i = 0; i < m_rects.size();) {
        if (!shouldMerge(m_rects[i], rect) && m_rects.size() < kMostRects) {
            ++i;
            continue;
        }
        rect = rect.united(m_rects[i]);
        m_rects.erase(m_rects.begin() + static_cast<std::ptrdiff_t>(i));
        i = 0; // the larger one may touch what the smaller did not
    }
    m_rects.push_back(rect);
}

std::vector<Rect> DamageRegion::take(const Rect& bounds)
{
    auto parts = std::exchange(m_rects, {});
    for (auto& part : parts)
        part = part.intersected(bounds);
    std::erase_if(parts, [](auto& part) { return part.isEmpty(); });
    return parts;
}

}
