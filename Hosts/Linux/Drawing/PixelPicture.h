#pragma once

#include <cairo/cairo.h>

#include "Quorvel/Platform/Image.h"

namespace quorvel::xdg {

/// A picture that is kept in its original pixels. Made and released on any thread, drawn on the
/// main thread.
class PixelPicture final : public PlatformImage {
public:
    /// Takes ownership of the surface.
    explicit PixelPicture(cairo_surface_t* surface) : m_surface(surface) { }
    PixelPicture(const PixelPicture&) = delete;
    PixelPicture& operator=(const PixelPicture&) = delete;
    ~PixelPicture() override { cairo_surface_destroy(m_surface); }

    cairo_surface_t* surface() const { return m_surface; }
    int width() const { return cairo_image_surface_get_width(m_surface); }
    int height() const { return cairo_image_surface_get_height(m_surface); }

private:
    cairo_surface_t* m_surface;
};

}
