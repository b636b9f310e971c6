#include "Hosts/X11/Surface/PointerTracker.h"

#include <utility>

#include "Hosts/X11/Surface/EventWindow.h"

namespace quorvel::xdg::x11 {

namespace {

enum WheelButton : xcb_button_t { wheelUp = 4, wheelDown, wheelLeft, wheelRight };

PointerButton pointerButton(xcb_button_t detail)
{
    switch (detail) {
    case XCB_BUTTON_INDEX_1:
        return PointerButton::primary;
    case XCB_BUTTON_INDEX_2:
        return PointerButton::middle;
    case XCB_BUTTON_INDEX_3:
        return PointerButton::secondary;
    default:
        return PointerButton::none;
    }
}

/// By the state of an event, which is that before it.
bool isDown(PointerButton button, std::uint16_t state)
{
    switch (button) {
    case PointerButton::primary:
        return state & XCB_BUTTON_MASK_1;
    case PointerButton::middle:
        return state & XCB_BUTTON_MASK_2;
    case PointerButton::secondary:
        return state & XCB_BUTTON_MASK_3;
    default:
        return false;
    }
}

std::optional<ScrollEvent> scrollEvent(xcb_button_t detail, Point at)
{
    switch (detail) {
    case wheelUp:
        return ScrollEvent{at, 0, 1};
    case wheelDown:
        return ScrollEvent{at, 0, -1};
    case wheelLeft:
        return ScrollEvent{at, 1, 0};
    case wheelRight:
        return ScrollEvent{at, -1, 0};
    default:
        return std::nullopt;
    }
}

}

void PointerTracker::setClient(SurfaceClient* client)
{
    if (client == m_client)
        return;
    bool wasInside = m_isInside;
    cancel();
    m_client = client;
    if (wasInside)
        enter(m_last);
}

void PointerTracker::handle(const xcb_generic_event_t* event)
{
    switch (event->response_type & 0x7f) {
    case XCB_ENTER_NOTIFY: {
        auto& crossing = as<xcb_enter_notify_event_t>(event);
        if (crossing.detail != XCB_NOTIFY_DETAIL_INFERIOR)
            enter(toPoints(crossing.event_x, crossing.event_y));
        break;
    }
    case XCB_LEAVE_NOTIFY: {
        // Another program's grab makes the pointer leave on paper only; where it really goes is
        // told when the grab ends.
        auto& crossing = as<xcb_leave_notify_event_t>(event);
        if (crossing.detail != XCB_NOTIFY_DETAIL_INFERIOR && crossing.mode != XCB_NOTIFY_MODE_GRAB)
            leave(toPoints(crossing.event_x, crossing.event_y));
        break;
    }
    case XCB_MOTION_NOTIFY: {
        auto& motion = as<xcb_motion_notify_event_t>(event);
        m_motion = toPoints(motion.event_x, motion.event_y);
        break;
    }
    case XCB_BUTTON_PRESS:
        press(as<xcb_button_press_event_t>(event));
        break;
    case XCB_BUTTON_RELEASE:
        release(as<xcb_button_release_event_t>(event));
        break;
    default:
        break;
    }
}

bool PointerTracker::endTurn()
{
    bool hasMoved = m_motion.has_value();
    deliverMotion();
    return hasMoved;
}

void PointerTracker::cancel()
{
    m_motion.reset();
    if (auto pressed = std::exchange(m_pressed, PointerButton::none);
        pressed != PointerButton::none)
        send(PointerAction::cancelled, m_last, pressed);
    if (std::exchange(m_isInside, false))
        send(PointerAction::exited, m_last);
}

void PointerTracker::enter(Point at)
{
    deliverMotion();
    m_last = at;
    if (!std::exchange(m_isInside, true))
        send(PointerAction::entered, at);
}

void PointerTracker::leave(Point at)
{
    deliverMotion();
    m_last = at;
    if (std::exchange(m_isInside, false))
        send(PointerAction::exited, at);
}

void PointerTracker::press(const xcb_button_press_event_t& event)
{
    auto at = toPoints(event.event_x, event.event_y);
    deliverMotion();
    if (auto scroll = scrollEvent(event.detail, at)) {
        if (m_client)
            m_client->scrollEvent(*scroll);
        return;
    }
    auto button = pointerButton(event.detail);
    if (button == PointerButton::none)
        return;
    enter(at); // a press may be the first that is heard of the pointer
    // The first button rules until it is let go, which somebody's grab may have kept from us.
    if (m_pressed != PointerButton::none && isDown(m_pressed, event.state))
        return;
    if (auto lost = std::exchange(m_pressed, PointerButton::none); lost != PointerButton::none)
        send(PointerAction::cancelled, at, lost);
    m_pressed = button;
    send(PointerAction::pressed, at, button);
}

void PointerTracker::release(const xcb_button_release_event_t& event)
{
    auto button = pointerButton(event.detail);
    deliverMotion();
    if (button == PointerButton::none || button != m_pressed)
        return; // its press was another view's, or was cancelled
    m_pressed = PointerButton::none;
    send(PointerAction::released, toPoints(event.event_x, event.event_y), button);
}

void PointerTracker::deliverMotion()
{
    if (!m_motion)
        return;
    m_last = *std::exchange(m_motion, std::nullopt);
    send(PointerAction::moved, m_last, m_pressed);
}

void PointerTracker::send(PointerAction action, Point at, PointerButton button)
{
    if (m_client)
        m_client->pointerEvent({action, at, button});
}

}
