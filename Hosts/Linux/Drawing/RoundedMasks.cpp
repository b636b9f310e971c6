#include "Hosts/Linux/Drawing/RoundedMasks.h"

#include <algorithm>

#include "Hosts/Linux/Drawing/SymbolPaths.h"

namespace quorvel::xdg {

namespace {

/// A byte each; larger areas are painted so rarely that their outline may be filled.
constexpr int kMostPixels = 24'000;

}

cairo_surface_t* RoundedMasks::mask(int width, int height, double radius)
{
    if (width > kMostPixels || height > kMostPixels / width)
        return nullptr;
    auto known = std::ranges::find_if(m_masks, [&](auto& mask) {
        return mask.width == width && mask.height == height && mask.radius == radius;
    });
    if (known != m_masks.end())
        return known->surface.get();
    CairoSurface surface{cairo_image_surface_create(CAIRO_FORMAT_A8, width, height)};
    Cairo cairo{cairo_create(surface.get())};
    addRoundedPath(
        cairo.get(), {0, 0, static_cast<double>(width), static_cast<double>(height)}, radius);
    cairo_fill(cairo.get());
    auto& oldest = m_masks[m_oldest];
    m_oldest = (m_oldest + 1) % m_masks.size();
    oldest = {width, height, radius, std::move(surface)};
    return oldest.surface.get();
}

}
