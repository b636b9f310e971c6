#include "Hosts/X11/Surface/PointerTracker.h"

#include <utility>

#include "Hosts/X11/EventWindow.h"

namespace quorvel::xdg::x11 {

namespace {

enum WheelButton : xcb_button_t { wheelUp = 4, wheelDown, wheelLeft, wheelRight };

}

PointerButtons heldButtonsOf(std::uint16_t state)
{
    return {(state & XCB_BUTTON_MASK_1) != 0, (state & XCB_BUTTON_MASK_3) != 0,
        (state & XCB_BUTTON_MASK_2) != 0};
}

PointerButton pointerButtonOf(xcb_button_t detail)
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

std::optional<ScrollEvent> scrollEventOf(xcb_button_t detail, Point at)
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

void PointerTracker::setClient(SurfaceClient* client)
{
    if (client == m_client)
        return;
    bool wasInside = m_isInside;
    bool wasLost = m_isLost;
    lose();
    m_client = client;
    m_isInside = wasInside;
    m_isLost = wasLost;
    if (m_isInside)
        send({PointerAction::entered, m_last});
}

void PointerTracker::handle(const xcb_generic_event_t* event)
{
    switch (event->response_type & 0x7f) {
    case XCB_ENTER_NOTIFY:
        cross(PointerAction::entered, as<xcb_enter_notify_event_t>(event));
        break;
    case XCB_LEAVE_NOTIFY: {
        // Another program's grab makes the pointer leave on paper only; where it really goes is
        // told when the grab ends.
        auto& crossing = as<xcb_leave_notify_event_t>(event);
        if (crossing.mode != XCB_NOTIFY_MODE_GRAB)
            cross(PointerAction::exited, crossing);
        break;
    }
    case XCB_MOTION_NOTIFY: {
        if (m_isLost)
            break;
        auto& motion = as<xcb_motion_notify_event_t>(event);
        m_motion = PointerEvent{PointerAction::moved, toPoints(motion.event_x, motion.event_y),
            PointerButton::none, heldButtonsOf(motion.state), m_modifiersIn(motion.state)};
        break;
    }
    case XCB_BUTTON_PRESS:
        turnButton(PointerAction::pressed, as<xcb_button_press_event_t>(event));
        break;
    case XCB_BUTTON_RELEASE:
        turnButton(PointerAction::released, as<xcb_button_release_event_t>(event));
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

void PointerTracker::lose()
{
    m_motion.reset();
    m_isInside = false;
    m_isLost = true;
    if (m_client)
        m_client->pointerLost();
}

void PointerTracker::cross(PointerAction action, const xcb_enter_notify_event_t& crossing)
{
    if (crossing.detail == XCB_NOTIFY_DETAIL_INFERIOR)
        return;
    deliverMotion();
    bool isInside = action == PointerAction::entered;
    m_isLost &= !isInside;
    if (std::exchange(m_isInside, isInside) != isInside)
        send({action, toPoints(crossing.event_x, crossing.event_y)});
}

void PointerTracker::turnButton(PointerAction action, const xcb_button_press_event_t& event)
{
    auto at = toPoints(event.event_x, event.event_y);
    deliverMotion();
    if (auto scroll = scrollEventOf(event.detail, at)) {
        if (m_client && action == PointerAction::pressed)
            m_client->scrollEvent(*scroll);
        return;
    }
    auto button = pointerButtonOf(event.detail);
    if (button == PointerButton::none)
        return;
    if (action == PointerAction::pressed) { // which may be the first that is heard of it
        m_isInside = true;
        m_isLost = false;
    }
    // Of a quick click that opened a menu, the release may have been sent before the menu's grab.
    if (m_isLost)
        return;
    send({action, at, button, heldButtonsOf(event.state), m_modifiersIn(event.state)});
}

void PointerTracker::deliverMotion()
{
    if (m_motion)
        send(*std::exchange(m_motion, std::nullopt));
}

void PointerTracker::send(const PointerEvent& event)
{
    m_last = event.location;
    if (m_client)
        m_client->pointerEvent(event);
}

}
