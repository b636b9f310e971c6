#include "Hosts/Linux/Pictures/PictureSurface.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace quorvel::xdg {
namespace {

/// Rows of 32-bit pixels.
struct PixelRows {
    explicit PixelRows(cairo_surface_t* surface)
        : data(cairo_image_surface_get_data(surface))
        , stride(cairo_image_surface_get_stride(surface))
        , width(cairo_image_surface_get_width(surface))
        , height(cairo_image_surface_get_height(surface))
    {
    }
    std::uint32_t* row(int y) const { return reinterpret_cast<std::uint32_t*>(data + y * stride); }

    unsigned char* data;
    int stride;
    int width;
    int height;
};

/// The average of the pixels in columns `left` to `right` and rows `top` to `bottom`, ends
/// excluded.
std::uint32_t average(const PixelRows& pixels, int left, int right, int top, int bottom)
{
    std::array<std::uint32_t, 4> sums{};
    for (int y = top; y < bottom; ++y) {
        for (const auto* pixel = pixels.row(y) + left; pixel != pixels.row(y) + right; ++pixel) {
            for (std::size_t channel = 0; channel < 4; ++channel)
                sums[channel] += *pixel >> 8 * channel & 0xFF;
        }
    }
    const auto count = static_cast<std::uint32_t>((right - left) * (bottom - top));
    std::uint32_t result = 0;
    for (std::size_t channel = 0; channel < 4; ++channel)
        result |= (sums[channel] + count / 2) / count << 8 * channel;
    return result;
}

/// The picture at a fraction of its size. Cairo's own filter skips pixels when it shrinks a lot, so
/// that thin lines break up, and takes ten times as long.
SurfacePointer reduced(cairo_surface_t* picture, int divisor)
{
    const auto format = cairo_image_surface_get_format(picture);
    if (format != CAIRO_FORMAT_ARGB32 && format != CAIRO_FORMAT_RGB24)
        return nullptr;
    cairo_surface_flush(picture);
    const PixelRows from{picture};
    const int width = std::max(from.width / divisor, 1);
    const int height = std::max(from.height / divisor, 1);
    SurfacePointer surface{cairo_image_surface_create(format, width, height)};
    if (cairo_surface_status(surface.get()) != CAIRO_STATUS_SUCCESS)
        return nullptr;
    const PixelRows to{surface.get()};
    for (int y = 0; y < height; ++y) {
        const int top = y * from.height / height;
        const int bottom = (y + 1) * from.height / height;
        for (int x = 0; x < width; ++x) {
            const int left = x * from.width / width;
            to.row(y)[x] = average(from, left, (x + 1) * from.width / width, top, bottom);
        }
    }
    cairo_surface_mark_dirty(surface.get());
    return surface;
}

int longerSide(cairo_surface_t* picture)
{
    return std::max(
        cairo_image_surface_get_width(picture), cairo_image_surface_get_height(picture));
}

}

std::size_t bytesOf(const SurfacePointer& surface)
{
    if (!surface)
        return 0;
    return static_cast<std::size_t>(cairo_image_surface_get_stride(surface.get()))
        * static_cast<std::size_t>(cairo_image_surface_get_height(surface.get()));
}

SurfacePointer makeSquare(int pixels)
{
    SurfacePointer surface{cairo_image_surface_create(CAIRO_FORMAT_ARGB32, pixels, pixels)};
    return cairo_surface_status(surface.get()) == CAIRO_STATUS_SUCCESS ? std::move(surface)
                                                                       : nullptr;
}

SurfacePointer fitted(cairo_surface_t* picture, int pixels)
{
    SurfacePointer smaller;
    if (const int divisor = longerSide(picture) / (2 * pixels); divisor > 1)
        smaller = reduced(picture, divisor);
    if (smaller)
        picture = smaller.get();

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
