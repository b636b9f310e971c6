#include "Hosts/X11/Surface/MenuSession.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <utility>

#include "Hosts/X11/Connection.h"
#include "Hosts/X11/Keyboard.h"
#include "Hosts/X11/Monitors.h"
#include "Hosts/X11/Surface/EventWindow.h"

namespace quorvel::xdg::x11 {

namespace {

constexpr int kMostGrabAttempts = 20;
constexpr auto kGrabAgainAfter = seconds(0.02);
/// A hand that holds the mouse still moves it by less, in points.
constexpr double kStillHand = 3;
constexpr auto kRestBeforeSubmenu = seconds(0.15);
/// A pointer on its way to a submenu may take this long from one motion to the next.
constexpr auto kPatienceOnTheWay = seconds(0.3);
constexpr auto kRollInterval = seconds(0.03);
constexpr double kRollStep = 8; ///< points
constexpr double kWheelStep = 52;
constexpr xcb_button_t kWheelUp = 4;
constexpr xcb_button_t kWheelDown = 5;
constexpr std::uint16_t kPointerMask
    = XCB_EVENT_MASK_POINTER_MOTION | XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE;

const Rect& monitorAt(const Monitors& monitors, const Rect& anchor)
{
    for (auto& monitor : monitors.list()) {
        if (monitor.pixels.contains(anchor.centre()))
            return monitor.pixels;
    }
    return monitors.coordinates().primaryPixels;
}

/// While the pointer is held, all events are those of one window: where on the screen is what
/// tells.
Point placeOf(const xcb_button_press_event_t& input)
{
    return {static_cast<double>(input.root_x), static_cast<double>(input.root_y)};
}

}

MenuSession::MenuSession(const SurfaceContext& context, Menu menu, const Rect& anchor, Ended ended)
    : m_context(context)
    , m_menu(std::move(menu))
    , m_ended(std::move(ended))
{
    m_levels.push_back({std::make_unique<MenuWindow>(m_context, m_menu, [&](Size size) {
        return placeMenu(size, anchor, monitorAt(m_context.monitors, anchor),
            m_context.appearance.value().isRightToLeft);
    })});
    m_events = m_context.connection.event.subscribe([this](auto* event) { handle(event); });
    m_context.keyboard.prepare();
    grab();
}

MenuSession::~MenuSession()
{
    releaseGrabs();
}

/// Once: there may be another menu by the time this one is gone.
void MenuSession::releaseGrabs()
{
    if (!std::exchange(m_mayHoldGrabs, false))
        return;
    auto* raw = m_context.connection.raw();
    xcb_ungrab_pointer(raw, XCB_CURRENT_TIME);
    xcb_ungrab_keyboard(raw, XCB_CURRENT_TIME);
    xcb_flush(raw);
}

std::vector<MenuEntry> MenuSession::entries() const
{
    std::vector<MenuEntry> all;
    for (auto& level : m_levels)
        level.window->addEntries(all);
    return all;
}

/// A window manager may still hold the pointer for the click that opened the menu: try again for a
/// moment. A menu that gets no hold of it could not be closed by a click outside, so it goes.
void MenuSession::grab()
{
    if (grabPointer()) {
        auto cookie = xcb_grab_keyboard_unchecked(m_context.connection.raw(), false, window(0).id(),
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

bool MenuSession::grabPointer()
{
    auto* raw = m_context.connection.raw();
    auto* reply = xcb_grab_pointer_reply(raw,
        xcb_grab_pointer(raw, false, window(0).id(), kPointerMask, XCB_GRAB_MODE_ASYNC,
            XCB_GRAB_MODE_ASYNC, XCB_NONE, XCB_NONE, XCB_CURRENT_TIME),
        nullptr);
    bool isGrabbed = reply && reply->status == XCB_GRAB_STATUS_SUCCESS;
    std::free(reply);
    return isGrabbed;
}

void MenuSession::handle(const xcb_generic_event_t* event)
{
    auto kind = event->response_type & 0x7f;
    if (kind == XCB_EXPOSE) {
        auto& part = as<xcb_expose_event_t>(event);
        for (auto& level : m_levels) {
            if (part.window == level.window->id())
                level.window->expose({static_cast<double>(part.x), static_cast<double>(part.y),
                    static_cast<double>(part.width), static_cast<double>(part.height)});
        }
        return;
    }
    if (eventWindow(event) != window(0).id())
        return;
    auto& input = as<xcb_button_press_event_t>(event);
    bool isWheel = input.detail >= kWheelUp;
    switch (kind) {
    case XCB_MOTION_NOTIFY:
        return motion(placeOf(input));
    case XCB_BUTTON_PRESS:
        return isWheel ? turnWheel(placeOf(input), input.detail) : press(placeOf(input));
    case XCB_BUTTON_RELEASE:
        return isWheel ? void() : release(placeOf(input));
    case XCB_KEY_PRESS:
        return key(m_context.keyboard.press(as<xcb_key_press_event_t>(event)));
    case XCB_KEY_RELEASE:
        return m_context.keyboard.release(as<xcb_key_release_event_t>(event));
    case XCB_UNMAP_NOTIFY:
        return end();
    default:
        break;
    }
}

void MenuSession::motion(Point at)
{
    if (!m_firstMotion)
        m_firstMotion = at;
    m_hasPointerMoved = m_hasPointerMoved
        || std::hypot(at.x - m_firstMotion->x, at.y - m_firstMotion->y)
            > kStillHand * m_context.scale();
    auto from = std::exchange(m_pointer, at);
    auto depth = depthAt(at);
    m_roll.cancel();
    if (!depth) {
        m_rest.cancel();
        return window(deepest()).highlight(std::nullopt);
    }
    if (int side = window(*depth).stripAt(at))
        return rollBy(*depth, side);
    if (*depth < deepest() && headsFor(from, at, window(*depth + 1).frame())) {
        m_rest = m_context.dispatch.main().after(
            kPatienceOnTheWay, [this, depth] { pointAt(*depth, m_pointer); });
        return;
    }
    pointAt(*depth, at);
}

std::optional<MenuSession::Depth> MenuSession::depthAt(Point at) const
{
    for (auto depth = m_levels.size(); depth-- > 0;) {
        if (m_levels[depth].window->frame().contains(at))
            return depth;
    }
    return std::nullopt;
}

void MenuSession::pointAt(Depth depth, Point at)
{
    auto row = window(depth).rowAt(at);
    bool isOpen = depth < deepest() && m_levels[depth + 1].opener == row;
    if (isOpen) {
        closeBelow(depth + 1);
        window(depth + 1).highlight(std::nullopt);
        window(depth).highlight(row);
        return m_rest.cancel();
    }
    bool waits = m_rest.isPending() && depth == deepest() && row == window(depth).highlighted();
    if (waits)
        return;
    closeBelow(depth);
    window(depth).highlight(row);
    m_rest.cancel();
    if (row && !window(depth).item(*row).submenu.empty())
        m_rest = m_context.dispatch.main().after(
            kRestBeforeSubmenu, [this, depth, row] { openSubmenu(depth, row); });
}

void MenuSession::rollBy(Depth depth, int side)
{
    closeBelow(depth);
    m_rest.cancel();
    m_roll = m_context.dispatch.main().every(
        kRollInterval, [this, depth, side] { window(depth).scroll(side * kRollStep); });
}

void MenuSession::turnWheel(Point at, xcb_button_t button)
{
    auto depth = depthAt(at);
    if (!depth || (button != kWheelUp && button != kWheelDown))
        return;
    closeBelow(*depth);
    window(*depth).scroll(button == kWheelUp ? -kWheelStep : kWheelStep);
    pointAt(*depth, at);
}

void MenuSession::press(Point at)
{
    auto depth = depthAt(at);
    if (!depth)
        return end();
    m_hasPointerMoved = true;
    m_pointer = at;
    pointAt(*depth, at);
}

void MenuSession::release(Point at)
{
    if (auto depth = depthAt(at); depth && m_hasPointerMoved)
        choose(*depth, window(*depth).rowAt(at));
}

void MenuSession::key(const KeyEvent& event)
{
    bool isRightToLeft = m_context.appearance.value().isRightToLeft;
    auto row = window(deepest()).highlighted();
    switch (event.keyCode) {
    case KeyCode::escape:
        return deepest() > 0 ? closeBelow(deepest() - 1) : end();
    case KeyCode::up:
        return step(row, -1);
    case KeyCode::down:
        return step(row, 1);
    case KeyCode::home:
        return step(std::nullopt, 1);
    case KeyCode::end:
        return step(std::nullopt, -1);
    case KeyCode::right:
        return isRightToLeft ? closeBelow(deepest() - std::min<Depth>(1, deepest()))
                             : openFromKeyboard();
    case KeyCode::left:
        return isRightToLeft ? openFromKeyboard()
                             : closeBelow(deepest() - std::min<Depth>(1, deepest()));
    case KeyCode::enter:
    case KeyCode::keypadEnter:
    case KeyCode::space:
        if (row && !window(deepest()).item(*row).submenu.empty())
            return openFromKeyboard();
        return choose(deepest(), row);
    default:
        break;
    }
}

void MenuSession::step(std::optional<std::size_t> from, int step)
{
    m_rest.cancel();
    auto& menu = window(deepest());
    auto row = menu.rowBeside(from, step);
    menu.highlight(row);
    if (row)
        menu.reveal(*row);
}

bool MenuSession::openSubmenu(Depth depth, std::optional<std::size_t> row)
{
    auto& parent = window(depth);
    if (!row || parent.item(*row).submenu.empty())
        return false;
    if (depth < deepest() && m_levels[depth + 1].opener == *row)
        return true;
    m_rest.cancel();
    closeBelow(depth);
    auto opener = parent.rowFrame(*row);
    m_levels.push_back({std::make_unique<MenuWindow>(m_context, parent.item(*row).submenu,
                            [&](Size size) {
                                return placeSubmenu(size, opener,
                                    MenuStyle{}.padding * m_context.scale(),
                                    monitorAt(m_context.monitors, opener),
                                    m_context.appearance.value().isRightToLeft);
                            }),
        *row});
    return true;
}

void MenuSession::openFromKeyboard()
{
    if (openSubmenu(deepest(), window(deepest()).highlighted()))
        step(std::nullopt, 1);
}

void MenuSession::closeBelow(Depth depth)
{
    m_rest.cancel();
    while (deepest() > depth)
        m_levels.pop_back();
}

void MenuSession::choose(Depth depth, std::optional<std::size_t> row)
{
    if (row && !openSubmenu(depth, row))
        end(window(depth).item(*row).action);
}

void MenuSession::end(std::function<void()> action)
{
    m_events = {};
    releaseGrabs();
    for (auto* item : {&m_nextGrab, &m_rest, &m_roll})
        item->cancel();
    if (auto ended = std::exchange(m_ended, nullptr))
        ended(std::move(action));
}

}
