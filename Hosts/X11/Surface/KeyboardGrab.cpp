#include "Hosts/X11/Surface/KeyboardGrab.h"

#include <cstdint>
#include <cstdlib>
#include <utility>

#include <xkbcommon/xkbcommon-keysyms.h>

#include "Hosts/X11/Connection.h"
#include "Hosts/X11/Surface/EventWindow.h"

namespace quorvel::xdg::x11 {

std::optional<Key> keyFor(std::uint32_t symbol, bool isShifted)
{
    switch (symbol) {
    case XKB_KEY_Left:
    case XKB_KEY_KP_Left:
        return Key::left;
    case XKB_KEY_Right:
    case XKB_KEY_KP_Right:
        return Key::right;
    case XKB_KEY_Up:
    case XKB_KEY_KP_Up:
        return Key::up;
    case XKB_KEY_Down:
    case XKB_KEY_KP_Down:
        return Key::down;
    case XKB_KEY_Home:
    case XKB_KEY_KP_Home:
        return Key::home;
    case XKB_KEY_End:
    case XKB_KEY_KP_End:
        return Key::end;
    case XKB_KEY_Tab:
        return isShifted ? Key::backTab : Key::tab;
    case XKB_KEY_Return:
    case XKB_KEY_KP_Enter:
        return Key::enter;
    case XKB_KEY_space:
        return Key::space;
    case XKB_KEY_Menu:
        return Key::menu;
    case XKB_KEY_Escape:
        return Key::escape;
    default:
        return std::nullopt;
    }
}

KeyboardGrab::KeyboardGrab(Connection& connection, SurfaceClient& client)
    : m_connection(connection)
    , m_client(client)
    , m_presses(connection, XCB_INPUT_DEVICE_ALL, XCB_INPUT_RAW_BUTTON_PRESS)
{
}

/// Nobody is told: the client may be on its way out as well.
KeyboardGrab::~KeyboardGrab()
{
    if (m_window == XCB_WINDOW_NONE)
        return;
    m_presses.listen(false);
    xcb_ungrab_keyboard(m_connection.raw(), XCB_CURRENT_TIME);
}

bool KeyboardGrab::take(xcb_window_t window)
{
    if (m_window != XCB_WINDOW_NONE)
        return true;
    if (window == XCB_WINDOW_NONE)
        return false;
    auto* raw = m_connection.raw();
    m_connection.addEventMask(window, XCB_EVENT_MASK_FOCUS_CHANGE);
    auto* reply = xcb_grab_keyboard_reply(raw,
        xcb_grab_keyboard(
            raw, false, window, XCB_CURRENT_TIME, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC),
        nullptr);
    bool isTaken = reply && reply->status == XCB_GRAB_STATUS_SUCCESS;
    std::free(reply);
    if (!isTaken)
        return false;
    m_window = window;
    m_presses.listen(true);
    m_keys.emplace(m_connection); // the layout may be another one than the last time
    m_events = m_connection.event.subscribe([this](auto* event) { handle(event); });
    m_client.keyboardDidChange(true);
    return true;
}

void KeyboardGrab::release()
{
    if (m_window == XCB_WINDOW_NONE)
        return;
    xcb_ungrab_keyboard(m_connection.raw(), XCB_CURRENT_TIME);
    xcb_flush(m_connection.raw());
    end();
}

void KeyboardGrab::handle(const xcb_generic_event_t* event)
{
    switch (event->response_type & 0x7f) {
    case XCB_KEY_PRESS: {
        auto& press = as<xcb_key_press_event_t>(event);
        auto key = keyFor(m_keys->symbol(press.detail), press.state & XCB_MOD_MASK_SHIFT);
        if (press.event == m_window && key)
            m_client.keyPressed(*key);
        break;
    }
    case XCB_FOCUS_OUT: {
        // A menu of ours has the keyboard now, or the window has left the screen.
        auto& focus = as<xcb_focus_out_event_t>(event);
        if (focus.event == m_window
            && (focus.mode == XCB_NOTIFY_MODE_GRAB || focus.mode == XCB_NOTIFY_MODE_UNGRAB))
            end();
        break;
    }
    default:
        if (m_presses.areIn(event))
            release();
        break;
    }
}

void KeyboardGrab::end()
{
    m_events = {};
    if (std::exchange(m_window, XCB_WINDOW_NONE) == XCB_WINDOW_NONE)
        return;
    m_presses.listen(false);
    m_client.keyboardDidChange(false);
}

}
