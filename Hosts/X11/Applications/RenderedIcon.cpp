#include "Hosts/X11/Applications/RenderedIcon.h"

#include <algorithm>

namespace quorvel::x11 {

cairo_surface_t* RenderedIcon::rendered(int pixels) const
{
    if (pixels < 1 || pixels > kLargestSize)
        return nullptr;
    auto found = std::find_if(m_renderings.begin(), m_renderings.end(),
        [pixels](const auto& rendering) { return rendering.pixels == pixels; });
    if (found == m_renderings.end()) {
        if (m_renderings.size() == kKeptSizes)
            m_renderings.pop_back();
        m_renderings.push_back({pixels, draw(pixels)});
        found = m_renderings.end() - 1;
    }
    std::rotate(m_renderings.begin(), found, found + 1);
    return m_renderings.front().surface.get();
}

SurfacePointer makeSquare(int pixels)
{
    SurfacePointer surface{cairo_image_surface_create(CAIRO_FORMAT_ARGB32, pixels, pixels)};
    return cairo_surface_status(surface.get()) == CAIRO_STATUS_SUCCESS ? std::move(surface)
                                                                       : nullptr;
}

SurfacePointer fitted(cairo_surface_t* picture, int pixels)
{
    auto square = makeSquare(pixels);
    if (!square)
        return nullptr;
    const double width = cairo_image_surface_get_width(picture);
    const double height = cairo_image_surface_get_height(picture);
    const double scale = pixels / std::max(width, height);

    cairo_t* context = cairo_create(square.get());
    cairo_translate(context, (pixels - width * scale) / 2, (pixels - height * scale) / 2);
    cairo_scale(context, scale, scale);
    cairo_set_source_surface(context, picture, 0, 0);
    cairo_pattern_set_filter(cairo_get_source(context), CAIRO_FILTER_BEST);
    cairo_paint(context);
    const bool isDrawn = cairo_status(context) == CAIRO_STATUS_SUCCESS;
    cairo_destroy(context);
    return isDrawn ? std::move(square) : nullptr;
}

}
