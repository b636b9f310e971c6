#include "Hosts/X11/Surface/KeyboardGrab.h"

#include <cstdlib>
#include <utility>

#include "Hosts/X11/Connection.h"
#include "Hosts/X11/Keyboard.h"
#include "Hosts/X11/Surface/EventWindow.h"

namespace quorvel::xdg::x11 {

KeyboardGrab::KeyboardGrab(Connection& connection, Keyboard& keyboard, SurfaceClient& client)
    : m_connection(connection)
    , m_keyboard(keyboard)
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
    m_keyboard.prepare();
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
        if (press.event == m_window)
            m_client.keyPressed(m_keyboard.press(press));
        break;
    }
    case XCB_KEY_RELEASE:
        m_keyboard.release(as<xcb_key_release_event_t>(event));
        break;
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
