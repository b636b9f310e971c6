#include "Hosts/X11/ServerTime.h"

#include <utility>

#include "Hosts/X11/Connection.h"

namespace quorvel::xdg::x11 {

ServerTime::ServerTime(Connection& connection)
    : m_connection(connection)
    , m_window(xcb_generate_id(connection.raw()))
{
    xcb_create_window(connection.raw(), XCB_COPY_FROM_PARENT, m_window, connection.root(), -1, -1,
        1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
    connection.addEventMask(m_window, XCB_EVENT_MASK_PROPERTY_CHANGE);
    m_events = connection.event.subscribe([this](auto* event) { handle(event); });
}

ServerTime::~ServerTime()
{
    m_connection.forgetWindow(m_window);
    xcb_destroy_window(m_connection.raw(), m_window);
}

void ServerTime::ask(std::function<void(xcb_timestamp_t)> answer)
{
    m_waiting.push_back(std::move(answer));
    if (m_waiting.size() > 1)
        return;
    xcb_change_property(m_connection.raw(), XCB_PROP_MODE_APPEND, m_window,
        m_connection.atoms().wmName, XCB_ATOM_STRING, 8, 0, nullptr);
    xcb_flush(m_connection.raw());
}

void ServerTime::handle(const xcb_generic_event_t* event)
{
    if ((event->response_type & 0x7f) != XCB_PROPERTY_NOTIFY)
        return;
    auto* change = reinterpret_cast<const xcb_property_notify_event_t*>(event);
    if (change->window != m_window)
        return;
    for (auto& answer : std::exchange(m_waiting, {}))
        answer(change->time);
}

}
