#include "Hosts/X11/Surface/PressWatch.h"

#include <utility>

#include "Hosts/X11/Connection.h"
#include "Hosts/X11/EventWindow.h"
#include "Hosts/X11/Reply.h"
#include "Hosts/X11/Surface/PointerTracker.h"

namespace quorvel::xdg::x11 {

namespace {

bool isWheel(std::uint32_t button)
{
    return scrollEventOf(static_cast<xcb_button_t>(button), {}).has_value();
}

}

PressWatch::PressWatch(Connection& connection)
    : m_connection(connection)
    , m_presses(connection, XCB_INPUT_DEVICE_ALL, XCB_INPUT_RAW_BUTTON_PRESS)
    , m_events(connection.event.subscribe([this](auto* event) { handle(event); }))
    , m_turnEnded(connection.turnEnded.subscribe([this] { settle(); }))
{
}

Subscription PressWatch::listenEverywhere()
{
    if (m_listeners++ == 0)
        m_presses.listen(true);
    return Subscription{std::shared_ptr<void>(nullptr, [this](void*) { release(); })};
}

void PressWatch::release()
{
    if (--m_listeners > 0)
        return;
    m_presses.listen(false);
    m_pending.reset();
}

void PressWatch::handle(const xcb_generic_event_t* event)
{
    if (m_isSuspended)
        return;
    if (m_listeners > 0 && m_presses.areIn(event))
        handleRaw(as<xcb_input_raw_button_press_event_t>(event));
    else if ((event->response_type & 0x7f) == XCB_BUTTON_PRESS)
        handleOwn(as<xcb_button_press_event_t>(event));
}

/// The mouse reports a press, and so does the pointer that it moves: only the pointer's counts.
void PressWatch::handleRaw(const xcb_input_raw_button_press_event_t& press)
{
    if (press.deviceid == press.sourceid || isWheel(press.detail))
        return;
    settle();
    auto* raw = m_connection.raw();
    // After the answer, the press on a window of ours is among the events that wait.
    auto pointer
        = owned(xcb_query_pointer_reply(raw, xcb_query_pointer(raw, m_connection.root()), nullptr));
    if (pointer)
        m_pending = {{double(pointer->root_x), double(pointer->root_y)},
            pointerButtonOf(static_cast<xcb_button_t>(press.detail))};
    began.emit();
}

void PressWatch::handleOwn(const xcb_button_press_event_t& press)
{
    if (isWheel(press.detail))
        return;
    m_pending.reset();
    onOwnWindow.emit({{double(press.root_x), double(press.root_y)}, pointerButtonOf(press.detail)});
}

void PressWatch::settle()
{
    if (auto press = std::exchange(m_pending, std::nullopt))
        elsewhere.emit(*press);
}

}
