#include "Hosts/X11/Capture/WindowCapture.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <vector>

#include <cairo/cairo.h>

#include "Hosts/Linux/Drawing/PixelPicture.h"
#include "Hosts/X11/Capture/BoxReduction.h"
#include "Hosts/X11/Capture/CaptureConnection.h"
#include "Hosts/X11/Desktop/Properties.h"
#include "Hosts/X11/Desktop/RequestBatch.h"

namespace quorvel::xdg::x11 {

namespace {

constexpr int kLargestExtent = 1000;

using Area = PixmapReader::Area;
using Geometry = Reply<xcb_get_geometry_reply_t>;
using Attributes = Reply<xcb_get_window_attributes_reply_t>;

Geometry geometryOf(xcb_connection_t* connection, xcb_drawable_t drawable)
{
    return Geometry{
        xcb_get_geometry_reply(connection, xcb_get_geometry(connection, drawable), nullptr)};
}

Attributes attributesOf(xcb_connection_t* connection, xcb_window_t window)
{
    return Attributes{xcb_get_window_attributes_reply(
        connection, xcb_get_window_attributes(connection, window), nullptr)};
}

Rect outerRect(const xcb_get_geometry_reply_t& geometry)
{
    return {double(geometry.x), double(geometry.y),
        double(geometry.width) + 2 * geometry.border_width,
        double(geometry.height) + 2 * geometry.border_width};
}

Area clipped(const Area& area, int width, int height)
{
    const int left = std::clamp(area.x, 0, width);
    const int top = std::clamp(area.y, 0, height);
    return {left, top, std::clamp(area.x + area.width, left, width) - left,
        std::clamp(area.y + area.height, top, height) - top};
}

/// As large as fits, with the proportions of the area, and no larger than it.
BoxReduction::Measures fitted(const Area& area, const CaptureConfiguration& largest)
{
    const double ratio
        = std::min({1.0, double(largest.width) / area.width, double(largest.height) / area.height});
    return {std::max(1, static_cast<int>(std::lround(area.width * ratio))),
        std::max(1, static_cast<int>(std::lround(area.height * ratio)))};
}

int extent(std::uint32_t value)
{
    return static_cast<int>(std::min<std::uint32_t>(value, kLargestExtent));
}

}

WindowCapture::WindowCapture(
    CaptureConnection& connection, xcb_window_t client, xcb_damage_damage_t damage)
    : m_connection(connection)
    , m_client(client)
    , m_damage(damage)
{
}

WindowCapture::~WindowCapture()
{
    if (m_pixmap)
        xcb_free_pixmap(m_connection.raw(), m_pixmap);
    if (m_isRedirected) {
        xcb_composite_unredirect_window(
            m_connection.raw(), m_topLevel, XCB_COMPOSITE_REDIRECT_AUTOMATIC);
    }
    xcb_flush(m_connection.raw());
}

WindowCapture::Progress WindowCapture::begin()
{
    m_topLevel = m_connection.topLevelOf(m_client);
    if (m_topLevel == XCB_WINDOW_NONE || !isViewable(m_client))
        return Progress::failed;
    if (namePixmap())
        return Progress::ready;
    const bool hasItsPicture = isFullyShown();
    if (!redirect())
        return Progress::failed;
    return hasItsPicture ? Progress::ready : Progress::waitsForClient;
}

bool WindowCapture::isViewable(xcb_window_t window) const
{
    const auto attributes = attributesOf(m_connection.raw(), window);
    return attributes && attributes->map_state == XCB_MAP_STATE_VIEWABLE
        && attributes->_class == XCB_WINDOW_CLASS_INPUT_OUTPUT;
}

/// Fails for a window that is not redirected or not mapped.
bool WindowCapture::namePixmap()
{
    const auto pixmap = xcb_generate_id(m_connection.raw());
    if (!m_connection.succeeds(
            xcb_composite_name_window_pixmap_checked(m_connection.raw(), m_topLevel, pixmap)))
        return false;
    m_pixmap = pixmap;
    return true;
}

bool WindowCapture::redirect()
{
    m_isRedirected = m_connection.succeeds(xcb_composite_redirect_window_checked(
        m_connection.raw(), m_topLevel, XCB_COMPOSITE_REDIRECT_AUTOMATIC));
    return m_isRedirected;
}

/// Whether nothing covers the window and no part of it is off the screen.
bool WindowCapture::isFullyShown() const
{
    auto* connection = m_connection.raw();
    const auto geometry = geometryOf(connection, m_topLevel);
    const Reply<xcb_query_tree_reply_t> tree{
        xcb_query_tree_reply(connection, xcb_query_tree(connection, m_connection.root()), nullptr)};
    if (!geometry || !tree)
        return false;
    const auto frame = outerRect(*geometry);
    const auto& screen = m_connection.screen();
    if (!Rect{0, 0, double(screen.width_in_pixels), double(screen.height_in_pixels)}.contains(
            frame))
        return false;

    // From the lowest to the highest.
    const auto* children = xcb_query_tree_children(tree.get());
    const auto* end = children + tree->children_len;
    std::vector<xcb_get_geometry_cookie_t> geometries;
    std::vector<xcb_get_window_attributes_cookie_t> attributes;
    for (const auto* above = std::find(children, end, m_topLevel); above < end; ++above) {
        if (*above == m_topLevel)
            continue;
        geometries.push_back(xcb_get_geometry(connection, *above));
        attributes.push_back(xcb_get_window_attributes(connection, *above));
    }
    bool isCovered = false;
    for (std::size_t i = 0; i < geometries.size(); ++i) {
        const Geometry other{xcb_get_geometry_reply(connection, geometries[i], nullptr)};
        const Attributes state{xcb_get_window_attributes_reply(connection, attributes[i], nullptr)};
        isCovered |= other && state && state->map_state == XCB_MAP_STATE_VIEWABLE
            && state->_class == XCB_WINDOW_CLASS_INPUT_OUTPUT
            && outerRect(*other).intersects(frame);
    }
    return !isCovered;
}

std::optional<Area> WindowCapture::areaInTopLevel() const
{
    auto* connection = m_connection.raw();
    const auto geometry = geometryOf(connection, m_client);
    const auto outer = geometryOf(connection, m_topLevel);
    const Reply<xcb_translate_coordinates_reply_t> origin{xcb_translate_coordinates_reply(
        connection, xcb_translate_coordinates(connection, m_client, m_topLevel, 0, 0), nullptr)};
    Extents frame;
    Extents shadow;
    RequestBatch batch{connection};
    auto read = [&batch, this](xcb_atom_t atom, Extents& into) {
        batch.property(m_client, atom, 4, [&into](const RawProperty& property) {
            into = decodeExtents(property).value_or(Extents{});
        });
    };
    read(m_connection.atoms().netFrameExtents, frame);
    read(m_connection.atoms().gtkFrameExtents, shadow);
    batch.finish();
    if (!geometry || !outer || !origin)
        return {};
    const int left = extent(frame.left) - extent(shadow.left);
    const int top = extent(frame.top) - extent(shadow.top);
    return Area{origin->dst_x + outer->border_width - left,
        origin->dst_y + outer->border_width - top,
        geometry->width + left + extent(frame.right) - extent(shadow.right),
        geometry->height + top + extent(frame.bottom) - extent(shadow.bottom)};
}

std::optional<WindowPicture> WindowCapture::finish(
    PixmapReader& reader, const CaptureConfiguration& largest)
{
    if (!m_pixmap && !namePixmap())
        return {};
    const auto attributes = attributesOf(m_connection.raw(), m_topLevel);
    const auto pixmap = geometryOf(m_connection.raw(), m_pixmap);
    const auto wanted = areaInTopLevel();
    if (!attributes || !pixmap || !wanted)
        return {};
    const auto layout = m_connection.layout(pixmap->depth, attributes->visual);
    if (!layout.isReadable())
        return {};
    // The window may have been resized since: what is read is what the picture has.
    const auto area = clipped(*wanted, pixmap->width, pixmap->height);
    if (area.width < 1 || area.height < 1)
        return {};

    const auto size = fitted(area, largest);
    const bool hasAlpha = pixmap->depth == 32 && layout.isUsual();
    const auto format = hasAlpha ? CAIRO_FORMAT_ARGB32 : CAIRO_FORMAT_RGB24;
    auto picture = std::make_shared<PixelPicture>(
        cairo_image_surface_create(format, size.width, size.height));
    auto* surface = picture->surface();
    if (cairo_surface_status(surface) != CAIRO_STATUS_SUCCESS)
        return {};
    BoxReduction reduction{{area.width, area.height},
        {size, cairo_image_surface_get_data(surface), cairo_image_surface_get_stride(surface)}};
    // From here on the picture would lack what is drawn.
    if (m_damage != XCB_NONE && m_connection.hasDamage())
        xcb_damage_subtract(m_connection.raw(), m_damage, XCB_NONE, XCB_NONE);
    if (!reader.read(m_pixmap, area, layout, [&](auto row) { reduction.addRow(row); }))
        return {};
    cairo_surface_mark_dirty(surface);
    return WindowPicture{std::move(picture), {double(size.width), double(size.height)}};
}

}
