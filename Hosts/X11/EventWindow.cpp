#include "Hosts/X11/EventWindow.h"

namespace quorvel::xdg::x11 {

xcb_window_t eventWindow(const xcb_generic_event_t* event)
{
    switch (event->response_type & 0x7f) {
    case XCB_EXPOSE:
        return as<xcb_expose_event_t>(event).window;
    case XCB_DESTROY_NOTIFY:
        return as<xcb_destroy_notify_event_t>(event).window;
    case XCB_UNMAP_NOTIFY:
        return as<xcb_unmap_notify_event_t>(event).window;
    case XCB_MAP_NOTIFY:
        return as<xcb_map_notify_event_t>(event).window;
    case XCB_REPARENT_NOTIFY:
        return as<xcb_reparent_notify_event_t>(event).window;
    case XCB_CONFIGURE_NOTIFY:
        return as<xcb_configure_notify_event_t>(event).window;
    case XCB_FOCUS_IN:
    case XCB_FOCUS_OUT:
        return as<xcb_focus_in_event_t>(event).event;
    case XCB_CLIENT_MESSAGE:
        return as<xcb_client_message_event_t>(event).window;
    case XCB_ENTER_NOTIFY:
    case XCB_LEAVE_NOTIFY:
    case XCB_MOTION_NOTIFY:
    case XCB_BUTTON_PRESS:
    case XCB_BUTTON_RELEASE:
    case XCB_KEY_PRESS:
    case XCB_KEY_RELEASE:
        // All of them have the window at the same place.
        return as<xcb_button_press_event_t>(event).event;
    default:
        return XCB_WINDOW_NONE;
    }
}

Rect exposedPart(const xcb_expose_event_t& event)
{
    return {static_cast<double>(event.x), static_cast<double>(event.y),
        static_cast<double>(event.width), static_cast<double>(event.height)};
}

}
