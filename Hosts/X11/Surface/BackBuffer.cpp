#include "Hosts/X11/Surface/BackBuffer.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include <cairo/cairo-xcb.h>

#include "Hosts/X11/Connection.h"

namespace quorvel::xdg::x11 {

namespace {

constexpr std::uint8_t kAlphaDepth = 32;

/// The visual's description together with its depth.
xcb_visualtype_t* findVisual(const xcb_screen_t& screen, auto matches)
{
    auto depths = xcb_screen_allowed_depths_iterator(&screen);
    for (; depths.rem > 0; xcb_depth_next(&depths)) {
        auto visuals = xcb_depth_visuals_iterator(depths.data);
        for (; visuals.rem > 0; xcb_visualtype_next(&visuals)) {
            if (matches(depths.data->depth, *visuals.data))
                return visuals.data;
        }
    }
    return nullptr;
}

xcb_visualtype_t* visualType(const xcb_screen_t& screen, xcb_visualid_t id)
{
    return findVisual(screen, [id](auto, auto& visual) { return visual.visual_id == id; });
}

bool hasCairoMasks(const xcb_visualtype_t& visual)
{
    return visual._class == XCB_VISUAL_CLASS_TRUE_COLOR && visual.red_mask == 0xff0000
        && visual.green_mask == 0xff00 && visual.blue_mask == 0xff;
}

/// Whether cairo's pixels are the server's, so that they can be sent as they are.
bool isNativeFormat(const Connection& connection, const WindowVisual& wanted)
{
    auto* setup = xcb_get_setup(connection.raw());
    bool isLittle = setup->image_byte_order == XCB_IMAGE_ORDER_LSB_FIRST;
    if (isLittle != (std::endian::native == std::endian::little))
        return false;
    auto* visual = visualType(connection.screen(), wanted.visual);
    if (!visual || !hasCairoMasks(*visual))
        return false;
    auto formats = xcb_setup_pixmap_formats_iterator(setup);
    for (; formats.rem > 0; xcb_format_next(&formats)) {
        if (formats.data->depth == wanted.depth)
            return formats.data->bits_per_pixel == 32 && formats.data->scanline_pad == 32;
    }
    return false;
}

}

WindowVisual WindowVisual::ofRoot(const Connection& connection)
{
    auto& screen = connection.screen();
    return {screen.root_depth, screen.root_visual, 0};
}

WindowVisual WindowVisual::withAlpha(Connection& connection)
{
    auto* visual = findVisual(connection.screen(),
        [](auto depth, auto& type) { return depth == kAlphaDepth && hasCairoMasks(type); });
    if (!visual)
        return ofRoot(connection);
    auto colormap = xcb_generate_id(connection.raw());
    xcb_create_colormap(
        connection.raw(), XCB_COLORMAP_ALLOC_NONE, colormap, connection.root(), visual->visual_id);
    return {kAlphaDepth, visual->visual_id, colormap};
}

BackBuffer::BackBuffer(Connection& connection, const WindowVisual& visual)
    : m_connection(connection)
    , m_visual(visual)
    , m_isNativeFormat(isNativeFormat(connection, visual))
{
}

BackBuffer::~BackBuffer()
{
    if (m_context)
        xcb_free_gc(m_connection.raw(), m_context);
}

void BackBuffer::resize(int width, int height)
{
    m_surface.reset();
    m_shared.reset();
    m_lastShared.reset();
    m_rows = {};
    if (width <= 0 || height <= 0)
        return;
    auto format = m_visual.depth == kAlphaDepth ? CAIRO_FORMAT_ARGB32 : CAIRO_FORMAT_RGB24;
    if (m_isNativeFormat)
        m_shared = SharedPixels::create(m_connection, width, height);
    CairoSurface surface{m_shared ? cairo_image_surface_create_for_data(
                                        m_shared->row(0), format, width, height, width * 4)
                                  : cairo_image_surface_create(format, width, height)};
    if (cairo_surface_status(surface.get()) == CAIRO_STATUS_SUCCESS)
        m_surface = std::move(surface);
}

cairo_surface_t* BackBuffer::surface() const
{
    if (m_lastShared)
        m_connection.waitUntilHandled(*m_lastShared);
    return m_surface.get();
}

void BackBuffer::copyTo(xcb_window_t window, const Rect& pixels)
{
    if (!m_surface)
        return;
    Rect whole{0, 0, static_cast<double>(cairo_image_surface_get_width(m_surface.get())),
        static_cast<double>(cairo_image_surface_get_height(m_surface.get()))};
    auto part = pixels.intersected(whole);
    if (part.isEmpty())
        return;
    int x = static_cast<int>(part.x);
    int y = static_cast<int>(part.y);
    int width = static_cast<int>(part.width);
    int height = static_cast<int>(part.height);
    if (m_shared && m_shared->isAttached())
        share(window, x, y, width, height);
    else if (m_isNativeFormat)
        put(window, x, y, width, height);
    else
        draw(window, x, y, width, height);
}

xcb_gcontext_t BackBuffer::graphicsContext(xcb_window_t window)
{
    if (!m_context) {
        m_context = xcb_generate_id(m_connection.raw());
        xcb_create_gc(m_connection.raw(), m_context, window, 0, nullptr);
    }
    return m_context;
}

void BackBuffer::share(xcb_window_t window, int x, int y, int width, int height)
{
    cairo_surface_flush(m_surface.get());
    auto request = xcb_shm_put_image(m_connection.raw(), window, graphicsContext(window),
        static_cast<std::uint16_t>(m_shared->width()),
        static_cast<std::uint16_t>(m_shared->height()), static_cast<std::uint16_t>(x),
        static_cast<std::uint16_t>(y), static_cast<std::uint16_t>(width),
        static_cast<std::uint16_t>(height), static_cast<std::int16_t>(x),
        static_cast<std::int16_t>(y), m_visual.depth, XCB_IMAGE_FORMAT_Z_PIXMAP, 0,
        m_shared->segment(), 0);
    m_lastShared = request.sequence;
}

void BackBuffer::put(xcb_window_t window, int x, int y, int width, int height)
{
    auto* raw = m_connection.raw();
    auto context = graphicsContext(window);
    cairo_surface_flush(m_surface.get());
    auto stride = static_cast<std::size_t>(cairo_image_surface_get_stride(m_surface.get()));
    auto* pixels = cairo_image_surface_get_data(m_surface.get());
    auto rowBytes = static_cast<std::size_t>(width) * 4;

    // In bands, for a server may take no more than 256 KB in one request.
    auto limit = static_cast<std::size_t>(xcb_get_maximum_request_length(raw)) * 4 - 64;
    int band = static_cast<int>(std::clamp<std::size_t>(limit / rowBytes, 1, 1024));
    for (int from = 0; from < height; from += band) {
        int rows = std::min(band, height - from);
        m_rows.resize(rowBytes * static_cast<std::size_t>(rows));
        for (int row = 0; row < rows; ++row)
            std::memcpy(m_rows.data() + rowBytes * static_cast<std::size_t>(row),
                pixels + stride * static_cast<std::size_t>(y + from + row) + x * 4, rowBytes);
        xcb_put_image(raw, XCB_IMAGE_FORMAT_Z_PIXMAP, window, context,
            static_cast<std::uint16_t>(width), static_cast<std::uint16_t>(rows),
            static_cast<std::int16_t>(x), static_cast<std::int16_t>(y + from), 0, m_visual.depth,
            static_cast<std::uint32_t>(m_rows.size()), m_rows.data());
    }
}

/// For servers with other pixels than ours: cairo converts.
void BackBuffer::draw(xcb_window_t window, int x, int y, int width, int height)
{
    auto* visual = visualType(m_connection.screen(), m_visual.visual);
    if (!visual)
        return;
    CairoSurface target{
        cairo_xcb_surface_create(m_connection.raw(), window, visual, x + width, y + height)};
    Cairo cairo{cairo_create(target.get())};
    cairo_set_operator(cairo.get(), CAIRO_OPERATOR_SOURCE);
    cairo_set_source_surface(cairo.get(), m_surface.get(), 0, 0);
    cairo_rectangle(cairo.get(), x, y, width, height);
    cairo_fill(cairo.get());
    cairo.reset();
    cairo_surface_finish(target.get());
}

}
