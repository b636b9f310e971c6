#include "Hosts/X11/Surface/MenuWindow.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "Hosts/Linux/Drawing/CairoCanvas.h"
#include "Hosts/Linux/Drawing/TextShaper.h"
#include "Hosts/X11/Connection.h"
#include "Hosts/X11/Monitors.h"

namespace quorvel::xdg::x11 {

namespace {

constexpr MenuStyle kStyle;
constexpr double kStripHeight = 18;
constexpr std::uint32_t kEventMask = XCB_EVENT_MASK_EXPOSURE | XCB_EVENT_MASK_STRUCTURE_NOTIFY
    | XCB_EVENT_MASK_POINTER_MOTION | XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE
    | XCB_EVENT_MASK_KEY_PRESS;

struct Colors {
    Color background;
    Color border;
    Color text;
    Color disabled;
    Color separator;
    Color highlight;
    Color highlightedText;
};

Colors colors(const Appearance& appearance)
{
    Color accent{0.16, 0.42, 0.84};
    if (appearance.isDark)
        return {Color::grey(0.15), Color::grey(0.32), Color::grey(0.94), Color::grey(0.52),
            Color::grey(0.28), accent, Color::grey(1)};
    return {Color::grey(0.98), Color::grey(0.72), Color::grey(0.10), Color::grey(0.58),
        Color::grey(0.85), accent, Color::grey(1)};
}

Rect placed(const MenuWindow::Place& place, Size points, double scale)
{
    auto frame = place({std::round(points.width * scale), std::round(points.height * scale)});
    return {std::round(frame.x), std::round(frame.y), std::max(1.0, std::round(frame.width)),
        std::max(1.0, std::round(frame.height))};
}

}

MenuWindow::MenuWindow(const SurfaceContext& context, const Menu& menu, const Place& place)
    : m_context(context)
    , m_menu(menu)
    , m_scale(context.scale())
    , m_layout(m_menu, PangoText{context.shaper, m_scale}, kStyle)
    , m_frame(placed(place, m_layout.size(), m_scale))
    , m_paint([this] { paint(); })
    , m_buffer(context.connection, WindowVisual::ofRoot(context.connection))
    , m_window(xcb_generate_id(context.connection.raw()))
{
    createWindow();
    paint(); // before it is seen: the first exposure finds the picture ready
    xcb_map_window(m_context.connection.raw(), m_window);
}

MenuWindow::~MenuWindow()
{
    xcb_destroy_window(m_context.connection.raw(), m_window);
    m_context.connection.forgetWindow(m_window);
    xcb_flush(m_context.connection.raw());
}

void MenuWindow::createWindow()
{
    auto& connection = m_context.connection;
    auto& atoms = connection.atoms();
    xcb_create_window_value_list_t values{};
    values.background_pixmap = XCB_BACK_PIXMAP_NONE;
    values.override_redirect = 1;
    xcb_create_window_aux(connection.raw(), XCB_COPY_FROM_PARENT, m_window, connection.root(),
        static_cast<std::int16_t>(m_frame.x), static_cast<std::int16_t>(m_frame.y),
        static_cast<std::uint16_t>(m_frame.width), static_cast<std::uint16_t>(m_frame.height), 0,
        XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
        XCB_CW_BACK_PIXMAP | XCB_CW_OVERRIDE_REDIRECT, &values);
    connection.addEventMask(m_window, kEventMask);
    xcb_change_property(connection.raw(), XCB_PROP_MODE_REPLACE, m_window, atoms.netWmWindowType,
        XCB_ATOM_ATOM, 32, 1, &atoms.netWmWindowTypePopupMenu);
    m_buffer.resize(static_cast<int>(m_frame.width), static_cast<int>(m_frame.height));
}

std::optional<std::size_t> MenuWindow::rowAt(Point at) const
{
    if (!m_frame.contains(at) || stripAt(at) != 0)
        return std::nullopt;
    return m_layout.rowAt({(at.x - m_frame.x) / m_scale, (at.y - m_frame.y) / m_scale + m_offset});
}

std::optional<std::size_t> MenuWindow::rowBeside(std::optional<std::size_t> row, int step) const
{
    return m_layout.rowBeside(row, step);
}

Rect MenuWindow::rowFrame(std::size_t row) const
{
    auto& rect = m_layout.rows()[row];
    return {m_frame.x + rect.x * m_scale, m_frame.y + (rect.y - m_offset) * m_scale,
        rect.width * m_scale, rect.height * m_scale};
}

void MenuWindow::highlight(std::optional<std::size_t> row)
{
    if (std::exchange(m_highlighted, row) != row)
        m_paint.request();
}

void MenuWindow::reveal(std::size_t row)
{
    auto& rect = m_layout.rows()[row];
    double height = m_frame.height / m_scale;
    double top = m_offset + kStripHeight;
    double bottom = m_offset + height - kStripHeight;
    if (rect.y < top)
        scroll(rect.y - top);
    else if (rect.maxY() > bottom)
        scroll(rect.maxY() - bottom);
}

void MenuWindow::scroll(double distance)
{
    double most = std::max(0.0, m_layout.size().height - m_frame.height / m_scale);
    double offset = std::clamp(m_offset + distance, 0.0, most);
    if (std::exchange(m_offset, offset) != offset)
        m_paint.request();
}

bool MenuWindow::hasMore(int side) const
{
    return side < 0 ? m_offset > 0
                    : m_offset + m_frame.height / m_scale < m_layout.size().height - 0.5;
}

Rect MenuWindow::strip(int side) const
{
    double height = m_frame.height / m_scale;
    return {0, side < 0 ? 0 : height - kStripHeight, m_frame.width / m_scale, kStripHeight};
}

int MenuWindow::stripAt(Point at) const
{
    Point inside{(at.x - m_frame.x) / m_scale, (at.y - m_frame.y) / m_scale};
    for (int side : {-1, 1}) {
        if (hasMore(side) && strip(side).contains(inside))
            return side;
    }
    return 0;
}

void MenuWindow::addEntries(std::vector<MenuEntry>& entries) const
{
    for (std::size_t row = 0; row < m_menu.size(); ++row) {
        auto seen = rowFrame(row).intersected(m_frame);
        if (!m_menu[row].title.empty() && !seen.isEmpty())
            entries.push_back({m_menu[row].title, m_menu[row].isEnabled,
                m_context.monitors.coordinates().toPoints(seen)});
    }
}

void MenuWindow::paint()
{
    if (m_buffer.isEmpty())
        return;
    auto palette = colors(m_context.appearance.value());
    Rect bounds{0, 0, m_frame.width / m_scale, m_frame.height / m_scale};
    CairoCanvas canvas{m_buffer.surface(), m_scale, m_context.shaper};
    canvas.fill(bounds, palette.background);
    canvas.save();
    canvas.translate(0, -m_offset);
    for (std::size_t row = 0; row < m_menu.size(); ++row)
        paintRow(canvas, row);
    canvas.restore();
    for (int side : {-1, 1})
        paintStrip(canvas, side);
    canvas.strokeRounded(bounds, 0, 1, palette.border);
    m_buffer.copyTo(m_window, Rect::from({}, m_frame.size()));
}

void MenuWindow::paintRow(Canvas& canvas, std::size_t row) const
{
    auto& appearance = m_context.appearance.value();
    auto palette = colors(appearance);
    auto& item = m_menu[row];
    auto& rect = m_layout.rows()[row];
    if (item.title.empty())
        return canvas.fill({rect.x, rect.centre().y, rect.width, 0.5}, palette.separator);
    bool isHighlighted = m_highlighted == row;
    if (isHighlighted)
        canvas.fillRounded(rect, kStyle.rowRadius, palette.highlight);
    TextStyle style;
    style.size = kStyle.fontSize;
    style.color = !item.isEnabled ? palette.disabled
        : isHighlighted           ? palette.highlightedText
                                  : palette.text;
    auto parts = m_layout.partsOf(row, appearance.isRightToLeft);
    style.alignment = TextAlignment::leading;
    canvas.drawText(item.title, parts.title, style);
    if (item.isChecked)
        canvas.drawSymbol(Symbol::checkmark, parts.mark, style.color);
    if (!item.submenu.empty())
        canvas.drawSymbol(appearance.isRightToLeft ? Symbol::chevronLeft : Symbol::chevronRight,
            parts.arrow, style.color);
}

/// A triangle on a ground that covers the row below it.
void MenuWindow::paintStrip(Canvas& canvas, int side) const
{
    if (!hasMore(side))
        return;
    auto palette = colors(m_context.appearance.value());
    auto rect = strip(side);
    canvas.fill(rect, palette.background);
    auto [x, y] = rect.centre();
    canvas.fillPolygon(
        {{x - 5, y - 2.5 * side}, {x + 5, y - 2.5 * side}, {x, y + 2.5 * side}}, palette.text);
}

}
