#include "Hosts/X11/Surface/MenuWindow.h"

#include <cmath>
#include <cstdlib>
#include <utility>

#include <xkbcommon/xkbcommon-keysyms.h>

#include "Hosts/X11/Connection.h"
#include "Hosts/X11/Monitors.h"
#include "Hosts/X11/Surface/CairoCanvas.h"
#include "Hosts/X11/Surface/TextShaper.h"

namespace quorvel::x11 {

namespace {

constexpr MenuStyle kStyle;
constexpr int kMostGrabAttempts = 20;
constexpr auto kGrabAgainAfter = seconds(0.02);
/// A hand that holds the mouse still moves it by less, in points.
constexpr double kStillHand = 3;
constexpr std::uint32_t kEventMask = XCB_EVENT_MASK_EXPOSURE | XCB_EVENT_MASK_STRUCTURE_NOTIFY
    | XCB_EVENT_MASK_POINTER_MOTION | XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE
    | XCB_EVENT_MASK_KEY_PRESS;
constexpr std::uint16_t kPointerMask
    = XCB_EVENT_MASK_POINTER_MOTION | XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE;

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

const Rect& monitorAt(const Monitors& monitors, const Rect& anchor)
{
    for (auto& monitor : monitors.list()) {
        if (monitor.pixels.contains(anchor.centre()))
            return monitor.pixels;
    }
    return monitors.coordinates().primaryPixels;
}

Rect menuPixels(const SurfaceContext& context, Size points, const Rect& anchor)
{
    double scale = context.monitors.coordinates().scale;
    Size size{std::round(points.width * scale), std::round(points.height * scale)};
    auto place = placeMenu(size, anchor, monitorAt(context.monitors, anchor),
        context.appearance.value().isRightToLeft);
    return {std::round(place.x), std::round(place.y), size.width, size.height};
}

}

MenuWindow::MenuWindow(const SurfaceContext& context, Menu menu, const Rect& anchor, Ended ended)
    : m_context(context)
    , m_menu(std::move(menu))
    , m_ended(std::move(ended))
    , m_scale(context.monitors.coordinates().scale)
    , m_layout(m_menu, PangoText{context.shaper, m_scale}, kStyle)
    , m_keys(context.connection)
    , m_paint([this] { paint(); })
    , m_buffer(context.connection, WindowVisual::ofRoot(context.connection))
{
    createWindow(menuPixels(m_context, m_layout.size(), anchor));
    m_events = m_context.connection.event.subscribe([this](auto* event) { handle(event); });
    paint(); // before it is seen: the first exposure finds the picture ready
    xcb_map_window(m_context.connection.raw(), m_window);
    grab();
}

MenuWindow::~MenuWindow()
{
    auto* raw = m_context.connection.raw();
    xcb_ungrab_pointer(raw, XCB_CURRENT_TIME);
    xcb_ungrab_keyboard(raw, XCB_CURRENT_TIME);
    xcb_destroy_window(raw, m_window);
    m_context.connection.forgetWindow(m_window);
    xcb_flush(raw);
}

void MenuWindow::createWindow(const Rect& pixels)
{
    auto& connection = m_context.connection;
    auto& atoms = connection.atoms();
    m_window = xcb_generate_id(connection.raw());
    xcb_create_window_value_list_t values{};
    values.background_pixmap = XCB_BACK_PIXMAP_NONE;
    values.override_redirect = 1;
    xcb_create_window_aux(connection.raw(), XCB_COPY_FROM_PARENT, m_window, connection.root(),
        static_cast<std::int16_t>(pixels.x), static_cast<std::int16_t>(pixels.y),
        static_cast<std::uint16_t>(pixels.width), static_cast<std::uint16_t>(pixels.height), 0,
        XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
        XCB_CW_BACK_PIXMAP | XCB_CW_OVERRIDE_REDIRECT, &values);
    connection.addEventMask(m_window, kEventMask);
    xcb_change_property(connection.raw(), XCB_PROP_MODE_REPLACE, m_window, atoms.netWmWindowType,
        XCB_ATOM_ATOM, 32, 1, &atoms.netWmWindowTypePopupMenu);
    m_buffer.resize(static_cast<int>(pixels.width), static_cast<int>(pixels.height));
}

/// A window manager may still hold the pointer for the click that opened the menu: try again for a
/// moment. A menu that gets no hold of it could not be closed by a click outside, so it goes.
void MenuWindow::grab()
{
    if (grabPointer()) {
        auto cookie = xcb_grab_keyboard_unchecked(m_context.connection.raw(), false, m_window,
            XCB_CURRENT_TIME, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
        xcb_discard_reply(m_context.connection.raw(), cookie.sequence);
        return;
    }
    m_nextGrab = m_context.dispatch.main().after(kGrabAgainAfter, [this] {
        if (++m_grabAttempts < kMostGrabAttempts)
            grab();
        else
            end();
    });
}

bool MenuWindow::grabPointer()
{
    auto* raw = m_context.connection.raw();
    auto* reply = xcb_grab_pointer_reply(raw,
        xcb_grab_pointer(raw, false, m_window, kPointerMask, XCB_GRAB_MODE_ASYNC,
            XCB_GRAB_MODE_ASYNC, XCB_NONE, XCB_NONE, XCB_CURRENT_TIME),
        nullptr);
    bool isGrabbed = reply && reply->status == XCB_GRAB_STATUS_SUCCESS;
    std::free(reply);
    return isGrabbed;
}

void MenuWindow::handle(const xcb_generic_event_t* event)
{
    auto toPoint = [this](auto& input) {
        return Point{input.event_x / m_scale, input.event_y / m_scale};
    };
    switch (event->response_type & 0x7f) {
    case XCB_EXPOSE: {
        auto& part = *reinterpret_cast<const xcb_expose_event_t*>(event);
        if (part.window == m_window)
            m_buffer.copyTo(m_window,
                {static_cast<double>(part.x), static_cast<double>(part.y),
                    static_cast<double>(part.width), static_cast<double>(part.height)});
        break;
    }
    case XCB_MOTION_NOTIFY: {
        auto& input = *reinterpret_cast<const xcb_motion_notify_event_t*>(event);
        if (input.event == m_window)
            motion(toPoint(input));
        break;
    }
    case XCB_BUTTON_PRESS: {
        auto& input = *reinterpret_cast<const xcb_button_press_event_t*>(event);
        if (input.event == m_window)
            press(toPoint(input));
        break;
    }
    case XCB_BUTTON_RELEASE: {
        auto& input = *reinterpret_cast<const xcb_button_release_event_t*>(event);
        if (input.event == m_window)
            release(toPoint(input));
        break;
    }
    case XCB_KEY_PRESS: {
        auto& input = *reinterpret_cast<const xcb_key_press_event_t*>(event);
        if (input.event == m_window)
            key(input.detail);
        break;
    }
    case XCB_UNMAP_NOTIFY:
        if (reinterpret_cast<const xcb_unmap_notify_event_t*>(event)->window == m_window)
            end();
        break;
    default:
        break;
    }
}

void MenuWindow::motion(Point at)
{
    if (!m_firstMotion)
        m_firstMotion = at;
    m_hasPointerMoved = m_hasPointerMoved
        || std::hypot(at.x - m_firstMotion->x, at.y - m_firstMotion->y) > kStillHand;
    highlight(m_layout.rowAt(at));
}

void MenuWindow::press(Point at)
{
    if (!Rect::from({}, m_layout.size()).contains(at))
        return end();
    m_hasPointerMoved = true;
    highlight(m_layout.rowAt(at));
}

void MenuWindow::release(Point at)
{
    if (m_hasPointerMoved)
        choose(m_layout.rowAt(at));
}

void MenuWindow::key(xcb_keycode_t code)
{
    switch (m_keys.symbol(code)) {
    case XKB_KEY_Escape:
        return end();
    case XKB_KEY_Up:
    case XKB_KEY_KP_Up:
        return highlight(m_layout.rowBeside(m_highlighted, -1));
    case XKB_KEY_Down:
    case XKB_KEY_KP_Down:
        return highlight(m_layout.rowBeside(m_highlighted, 1));
    case XKB_KEY_Home:
        return highlight(m_layout.rowBeside(std::nullopt, 1));
    case XKB_KEY_End:
        return highlight(m_layout.rowBeside(std::nullopt, -1));
    case XKB_KEY_Return:
    case XKB_KEY_KP_Enter:
    case XKB_KEY_space:
        return choose(m_highlighted);
    default:
        break;
    }
}

void MenuWindow::highlight(std::optional<std::size_t> row)
{
    if (row == m_highlighted)
        return;
    m_highlighted = row;
    m_paint.request();
}

void MenuWindow::choose(std::optional<std::size_t> row)
{
    if (row)
        end(m_menu[*row].action);
}

void MenuWindow::end(std::function<void()> action)
{
    m_events = {};
    m_nextGrab.cancel();
    if (auto ended = std::exchange(m_ended, nullptr))
        ended(std::move(action));
}

void MenuWindow::paint()
{
    if (m_buffer.isEmpty())
        return;
    auto palette = colors(m_context.appearance.value());
    auto bounds = Rect::from({}, m_layout.size());
    CairoCanvas canvas{m_buffer.surface(), m_scale, m_context.shaper};
    canvas.fill(bounds, palette.background);
    canvas.strokeRounded(bounds, 0, 1, palette.border);
    for (std::size_t row = 0; row < m_menu.size(); ++row)
        paintRow(canvas, row);
    m_buffer.copyTo(m_window, {0, 0, bounds.width * m_scale + 1, bounds.height * m_scale + 1});
}

void MenuWindow::paintRow(Canvas& canvas, std::size_t row)
{
    auto palette = colors(m_context.appearance.value());
    auto& item = m_menu[row];
    auto& rect = m_layout.rows()[row];
    if (item.title.empty()) {
        Rect line{rect.x, rect.centre().y, rect.width, 0.5};
        return canvas.fill(line, palette.separator);
    }
    bool isHighlighted = m_highlighted == row;
    if (isHighlighted)
        canvas.fillRounded(rect, kStyle.rowRadius, palette.highlight);
    TextStyle style;
    style.size = kStyle.fontSize;
    style.color = !item.isEnabled ? palette.disabled
        : isHighlighted           ? palette.highlightedText
                                  : palette.text;
    canvas.drawText(item.title, rect.inset(kStyle.textInset, 0), style);
}

}
