#include "Hosts/Linux/Drawing/RoundedMasks.h"

#include <algorithm>

#include "Hosts/Linux/Drawing/SymbolPaths.h"

namespace quorvel::xdg {

namespace {

/// A byte each; larger areas are painted so rarely that their outline may be filled.
constexpr int kMostPixels = 24'000;

}

cairo_surface_t* RoundedMasks::mask(const Shape& shape)
{
    if (shape.width > kMostPixels || shape.height > kMostPixels / shape.width)
        return nullptr;
    auto known = std::ranges::find(m_masks, shape, &Mask::shape);
    if (known != m_masks.end())
        return known->surface.get();
    CairoSurface surface{cairo_image_surface_create(CAIRO_FORMAT_A8, shape.width, shape.height)};
    Cairo cairo{cairo_create(surface.get())};
    const Rect all{0, 0, static_cast<double>(shape.width), static_cast<double>(shape.height)};
    if (shape.line > 0) {
        fillBetween(cairo.get(), all, shape.radius, all.inset(shape.line, shape.line),
            shape.radius - shape.line);
    } else {
        addRoundedPath(cairo.get(), all, shape.radius);
        cairo_fill(cairo.get());
    }
    auto& oldest = m_masks[m_oldest];
    m_oldest = (m_oldest + 1) % m_masks.size();
    oldest = {shape, std::move(surface)};
    return oldest.surface.get();
}

}
