#include "Hosts/X11/Surface/AlphaShape.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace quorvel::xdg::x11 {

namespace {

std::uint32_t* rowOf(cairo_surface_t* surface, int y)
{
    auto offset = static_cast<std::ptrdiff_t>(y) * cairo_image_surface_get_stride(surface);
    return reinterpret_cast<std::uint32_t*>(cairo_image_surface_get_data(surface) + offset);
}

std::vector<xcb_rectangle_t> runsOf(
    const std::uint32_t* row, int width, int y, std::uint32_t leastAlpha)
{
    std::vector<xcb_rectangle_t> runs;
    auto isThere = [&](int x) { return row[x] >> 24 >= leastAlpha; };
    for (int x = 0; x < width;) {
        int start = x;
        while (x < width && isThere(x) == isThere(start))
            ++x;
        if (isThere(start))
            runs.push_back({static_cast<std::int16_t>(start), static_cast<std::int16_t>(y),
                static_cast<std::uint16_t>(x - start), 1});
    }
    return runs;
}

/// Whether the runs lie right below the last band, each below one of its rectangles.
bool continues(const std::vector<xcb_rectangle_t>& all, std::size_t band,
    const std::vector<xcb_rectangle_t>& runs)
{
    return !runs.empty()
        && std::equal(all.begin() + static_cast<std::ptrdiff_t>(band), all.end(), runs.begin(),
            runs.end(), [](auto& above, auto& run) {
                return above.x == run.x && above.width == run.width
                    && above.y + above.height == run.y;
            });
}

std::uint32_t inFull(std::uint32_t pixel)
{
    std::uint32_t alpha = pixel >> 24;
    if (alpha == 0 || alpha == 255)
        return pixel;
    auto component = [&](int shift) {
        return std::min<std::uint32_t>((pixel >> shift & 0xff) * 255 / alpha, 255) << shift;
    };
    return 0xff000000 | component(16) | component(8) | component(0);
}

}

std::vector<xcb_rectangle_t> opaqueRectangles(cairo_surface_t* surface, std::uint32_t leastAlpha)
{
    cairo_surface_flush(surface);
    std::vector<xcb_rectangle_t> all;
    std::size_t band = 0; // where the rectangles of the last row begin
    for (int y = 0; y < cairo_image_surface_get_height(surface); ++y) {
        auto runs
            = runsOf(rowOf(surface, y), cairo_image_surface_get_width(surface), y, leastAlpha);
        if (continues(all, band, runs)) {
            for (std::size_t i = band; i < all.size(); ++i)
                ++all[i].height;
            continue;
        }
        band = all.size();
        all.insert(all.end(), runs.begin(), runs.end());
    }
    return all;
}

void flatten(cairo_surface_t* source, cairo_surface_t* target, const cairo_rectangle_int_t& part)
{
    cairo_surface_flush(source);
    cairo_surface_flush(target);
    for (int y = part.y; y < part.y + part.height; ++y) {
        auto* from = rowOf(source, y) + part.x;
        std::transform(from, from + part.width, rowOf(target, y) + part.x, inFull);
    }
    cairo_surface_mark_dirty(target);
}

}
