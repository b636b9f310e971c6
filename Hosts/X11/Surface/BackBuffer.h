#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include <xcb/xcb.h>

#include "Hosts/Linux/Drawing/CairoHandles.h"
#include "Hosts/X11/Surface/SharedPixels.h"
#include "Quorvel/Platform/Geometry.h"

namespace quorvel::xdg::x11 {

class Connection;

/// A depth and visual with the colour map that a window of it needs.
struct WindowVisual {
    std::uint8_t depth = 0;
    xcb_visualid_t visual = 0;
    xcb_colormap_t colormap = 0; ///< 0: the parent's

    static WindowVisual ofRoot(const Connection&);
    /// A visual with transparency, if the screen has one; the colour map is new.
    static WindowVisual withAlpha(Connection&);
};

/// The content of a window, kept on our side: a part is painted, then sent at once, so nothing
/// flickers and exposed parts need no painting.
class BackBuffer {
public:
    BackBuffer(Connection&, const WindowVisual&);
    ~BackBuffer();

    /// Allocates for this size; the content is undefined. An empty size frees everything.
    void resize(int width, int height);
    bool isEmpty() const { return !m_surface; }
    /// To paint on. The server reads shared memory at a time of its own: waits until it has read
    /// all that it was told to.
    cairo_surface_t* surface() const;

    void copyTo(xcb_window_t, const Rect& pixels);

private:
    void share(xcb_window_t, int x, int y, int width, int height);
    void put(xcb_window_t, int x, int y, int width, int height);
    void draw(xcb_window_t, int x, int y, int width, int height);
    xcb_gcontext_t graphicsContext(xcb_window_t);

    Connection& m_connection;
    WindowVisual m_visual;
    bool m_isNativeFormat;
    xcb_gcontext_t m_context = 0;
    std::unique_ptr<SharedPixels> m_shared; ///< null, or not attached: pixels are sent
    CairoSurface m_surface; ///< in the shared memory, if there is any
    std::optional<std::uint32_t> m_lastShared; ///< the number of the last request to read it
    std::vector<std::uint8_t> m_rows; ///< the rows of a part, packed
};

}
