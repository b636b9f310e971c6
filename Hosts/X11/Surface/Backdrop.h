#pragma once

#include <cstdint>
#include <vector>

#include <cairo/cairo.h>

#include "Quorvel/Platform/Geometry.h"

namespace quorvel::xdg::x11 {

class Connection;

/// What is seen beside the edges of a picture without transparency: its partly covered pixels are
/// mixed with that, so that round corners and slanted edges look smooth. What lies right below them
/// cannot be read while the window is there, but is hardly ever another colour. Main thread.
class Backdrop {
public:
    explicit Backdrop(Connection& connection) : m_connection(connection) { }

    /// Below this nobody sees that a pixel is there.
    static constexpr std::uint32_t kLeastAlpha = 16;

    /// Looks for the partly transparent pixels of a picture.
    void setPicture(cairo_surface_t*);
    /// Reads the screen beside them; `frame` is that of the same picture, in pixels of the X
    /// screen. False: they come out as before.
    bool read(cairo_surface_t* picture, const Rect& frame);
    /// There is a colour for each of those pixels.
    bool isKnown() const { return m_isKnown; }
    /// Paints those pixels on a picture of the same size, opaque.
    void blend(cairo_surface_t* target) const;
    /// Where they are, in the picture.
    const std::vector<Rect>& parts() const { return m_parts; }

private:
    struct SoftPixel {
        int x = 0;
        int y = 0;
        std::uint32_t color = 0; ///< of the picture, premultiplied
        std::uint32_t blended = 0;
    };

    bool mix(cairo_surface_t* picture, const Rect& frame);

    Connection& m_connection;
    std::vector<SoftPixel> m_soft;
    std::vector<Rect> m_parts;
    bool m_isKnown = false;
};

}
