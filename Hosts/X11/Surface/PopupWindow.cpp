#include "Hosts/X11/Surface/PopupWindow.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include <xcb/shape.h>

#include "Hosts/X11/Connection.h"
#include "Hosts/X11/Surface/AlphaShape.h"
#include "Hosts/X11/Surface/WindowProperties.h"

namespace quorvel::xdg::x11 {

namespace {

constexpr std::uint32_t kPopupEvents = XCB_EVENT_MASK_EXPOSURE | XCB_EVENT_MASK_ENTER_WINDOW
    | XCB_EVENT_MASK_LEAVE_WINDOW | XCB_EVENT_MASK_POINTER_MOTION | XCB_EVENT_MASK_BUTTON_PRESS
    | XCB_EVENT_MASK_BUTTON_RELEASE;

constexpr std::uint8_t kDepthWithAlpha = 32;

bool hasShapes(Connection& connection)
{
    auto* extension = xcb_get_extension_data(connection.raw(), &xcb_shape_id);
    return extension && extension->present;
}

bool isEqual(const xcb_rectangle_t& a, const xcb_rectangle_t& b)
{
    return a.x == b.x && a.y == b.y && a.width == b.width && a.height == b.height;
}

}

PopupWindow::PopupWindow(
    Connection& connection, const std::string& title, Kind kind, bool isComposited)
    : m_connection(connection)
    , m_visual(
          isComposited ? WindowVisual::withAlpha(connection) : WindowVisual::ofRoot(connection))
    , m_keepsAlpha(m_visual.depth == kDepthWithAlpha)
    , m_buffer(connection, m_visual)
    , m_backdrop(connection)
    , m_window(xcb_generate_id(connection.raw()))
{
    create(title, kind);
}

PopupWindow::~PopupWindow()
{
    xcb_destroy_window(m_connection.raw(), m_window);
    if (m_visual.colormap)
        xcb_free_colormap(m_connection.raw(), m_visual.colormap);
    m_connection.forgetWindow(m_window);
    xcb_flush(m_connection.raw());
}

void PopupWindow::create(const std::string& title, Kind kind)
{
    auto* raw = m_connection.raw();
    auto& atoms = m_connection.atoms();
    // What a transparent window gains in size is nothing until it is painted; any colour of an
    // opaque one would be seen for a moment.
    xcb_create_window_value_list_t values{};
    values.background_pixel = 0;
    values.border_pixel = 0;
    values.bit_gravity = XCB_GRAVITY_NORTH_WEST;
    values.override_redirect = 1;
    values.colormap = m_visual.colormap;
    std::uint32_t mask = XCB_CW_BORDER_PIXEL | XCB_CW_BIT_GRAVITY | XCB_CW_OVERRIDE_REDIRECT;
    mask |= m_visual.colormap ? XCB_CW_BACK_PIXEL | XCB_CW_COLORMAP : std::uint32_t{};
    xcb_create_window_aux(raw, m_visual.depth, m_window, m_connection.root(), 0, 0, 1, 1, 0,
        XCB_WINDOW_CLASS_INPUT_OUTPUT, m_visual.visual, mask, &values);
    m_connection.addEventMask(m_window, kPopupEvents);
    auto type = kind == Kind::menu ? atoms.netWmWindowTypePopupMenu : atoms.netWmWindowTypeTooltip;
    WindowProperties properties{m_connection, m_window};
    properties.setAtoms(atoms.netWmWindowType, {type});
    properties.nameProgram();
    properties.declineShadow();
    properties.setTitle(title);
}

bool PopupWindow::setFrame(const Rect& frame)
{
    if (frame == m_frame)
        return false;
    bool isResized = frame.size() != m_frame.size();
    m_frame = frame;
    std::int32_t values[] = {static_cast<std::int32_t>(frame.x), static_cast<std::int32_t>(frame.y),
        static_cast<std::int32_t>(frame.width), static_cast<std::int32_t>(frame.height)};
    xcb_configure_window(m_connection.raw(), m_window,
        XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH
            | XCB_CONFIG_WINDOW_HEIGHT,
        values);
    if (!isResized)
        return false;
    m_buffer.resize(static_cast<int>(frame.width), static_cast<int>(frame.height));
    makePicture();
    return true;
}

void PopupWindow::setCursor(xcb_cursor_t cursor)
{
    xcb_change_window_attributes(m_connection.raw(), m_window, XCB_CW_CURSOR, &cursor);
}

void PopupWindow::makePicture()
{
    m_picture.reset();
    if (!m_keepsAlpha)
        m_picture.reset(cairo_image_surface_create(CAIRO_FORMAT_ARGB32,
            static_cast<int>(m_frame.width), static_cast<int>(m_frame.height)));
}

/// The compositor may come and go. A window that was made without transparency stays so.
bool PopupWindow::setComposited(bool isComposited)
{
    bool keepsAlpha = isComposited && m_visual.depth == kDepthWithAlpha;
    if (std::exchange(m_keepsAlpha, keepsAlpha) == keepsAlpha || m_frame.isEmpty())
        return false;
    if (keepsAlpha && m_hasShape)
        xcb_shape_mask(m_connection.raw(), XCB_SHAPE_SO_SET, XCB_SHAPE_SK_BOUNDING, m_window, 0, 0,
            XCB_PIXMAP_NONE);
    m_hasShape = false;
    makePicture();
    return true;
}

void PopupWindow::present(const std::vector<Rect>& parts)
{
    if (!picture() || m_buffer.isEmpty())
        return;
    flattenParts(parts);
    // Inside, nothing is transparent.
    if (std::ranges::any_of(parts, [this](auto& part) { return reachesEdge(part); }))
        shape();
    if (m_picture && m_backdrop.isKnown())
        m_backdrop.blend(m_buffer.surface());
    if (!std::exchange(m_isMapped, true)) {
        raise();
        xcb_map_window(m_connection.raw(), m_window);
    }
    // All requests go out together, so that nobody sees one without the others.
    for (auto& part : parts)
        m_buffer.copyTo(m_window, part);
    xcb_flush(m_connection.raw());
}

/// What is painted keeps its transparency; what is shown has none.
void PopupWindow::flattenParts(const std::vector<Rect>& parts)
{
    if (!m_picture)
        return;
    for (auto& part : parts)
        flatten(m_picture.get(), m_buffer.surface(),
            {static_cast<int>(part.x), static_cast<int>(part.y), static_cast<int>(part.width),
                static_cast<int>(part.height)});
}

bool PopupWindow::reachesEdge(const Rect& part) const
{
    return part.x <= 0 || part.y <= 0 || part.maxX() >= m_frame.width
        || part.maxY() >= m_frame.height;
}

void PopupWindow::setOpacity(double opacity)
{
    auto value = static_cast<std::uint32_t>(std::lround(opacity * 0xFFFFFFFFU));
    xcb_change_property(m_connection.raw(), XCB_PROP_MODE_REPLACE, m_window,
        m_connection.atoms().netWmWindowOpacity, XCB_ATOM_CARDINAL, 32, 1, &value);
    xcb_flush(m_connection.raw());
}

void PopupWindow::shape()
{
    if (m_picture) {
        m_backdrop.setPicture(m_picture.get());
        m_backdrop.read(m_picture.get(), m_frame);
    }
    applyShape();
}

void PopupWindow::applyShape()
{
    bool isSmooth = m_picture && m_backdrop.isKnown();
    auto rectangles = opaqueRectangles(picture(), isSmooth ? Backdrop::kLeastAlpha : kHalfAlpha);
    if (!hasShapes(m_connection)
        || (m_hasShape && std::ranges::equal(rectangles, m_shape, isEqual)))
        return;
    m_hasShape = true;
    m_shape = std::move(rectangles);
    xcb_shape_rectangles(m_connection.raw(), XCB_SHAPE_SO_SET,
        m_picture ? XCB_SHAPE_SK_BOUNDING : XCB_SHAPE_SK_INPUT, XCB_CLIP_ORDERING_YX_BANDED,
        m_window, 0, 0, static_cast<std::uint32_t>(m_shape.size()), m_shape.data());
}

bool PopupWindow::followBackdrop()
{
    if (!m_picture || !m_isMapped || m_buffer.isEmpty())
        return false;
    if (!m_backdrop.read(m_picture.get(), m_frame))
        return !m_backdrop.parts().empty();
    flattenParts(m_backdrop.parts());
    if (m_backdrop.isKnown())
        m_backdrop.blend(m_buffer.surface());
    applyShape();
    for (auto& part : m_backdrop.parts())
        m_buffer.copyTo(m_window, part);
    xcb_flush(m_connection.raw());
    return true;
}

void PopupWindow::raise()
{
    std::uint32_t above = XCB_STACK_MODE_ABOVE;
    xcb_configure_window(m_connection.raw(), m_window, XCB_CONFIG_WINDOW_STACK_MODE, &above);
}

}
