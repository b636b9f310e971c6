#include "Tests/X11/Support/Connection.h"

#include <algorithm>

namespace quorvel::x11tests {

Connection::Connection(const std::string& display)
    : m_connection(xcb_connect(display.c_str(), nullptr))
{
    if (!isCut())
        m_root = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data->root;
}

Connection::~Connection()
{
    xcb_disconnect(m_connection);
}

xcb_atom_t Connection::atom(const std::string& name)
{
    const auto known = m_atoms.find(name);
    if (known != m_atoms.end())
        return known->second;
    const auto cookie
        = xcb_intern_atom(m_connection, 0, static_cast<std::uint16_t>(name.size()), name.data());
    const auto reply = wait(xcb_intern_atom_reply, cookie);
    return m_atoms[name] = reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

std::uint32_t Connection::serverTime()
{
    const auto window = xcb_generate_id(m_connection);
    const std::uint32_t changes = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_create_window(m_connection, XCB_COPY_FROM_PARENT, window, m_root, 0, 0, 1, 1, 0,
        XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &changes);
    setText(window, "WM_NAME", "STRING", "clock");
    xcb_flush(m_connection);
    std::uint32_t time = 0;
    while (time == 0) {
        const Reply<xcb_generic_event_t> event{xcb_wait_for_event(m_connection)};
        if (!event)
            break;
        if ((event->response_type & 0x7f) == XCB_PROPERTY_NOTIFY)
            time = reinterpret_cast<xcb_property_notify_event_t*>(event.get())->time;
    }
    xcb_destroy_window(m_connection, window);
    return time;
}

void Connection::send(xcb_window_t to, std::uint32_t events, xcb_window_t about,
    const std::string& message, const std::vector<std::uint32_t>& data)
{
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = about;
    event.type = atom(message);
    std::copy(data.begin(), data.end(), event.data.data32);
    xcb_send_event(m_connection, 0, to, events, reinterpret_cast<const char*>(&event));
    sync();
}

Connection::PropertyReply Connection::read(xcb_window_t window, const std::string& property)
{
    constexpr std::uint32_t kItems = 1 << 20;
    return wait(xcb_get_property_reply,
        xcb_get_property(
            m_connection, 0, window, atom(property), XCB_GET_PROPERTY_TYPE_ANY, 0, kItems));
}

std::vector<std::uint32_t> Connection::numbers(xcb_window_t window, const std::string& property)
{
    const auto reply = read(window, property);
    if (!reply || reply->format != 32)
        return {};
    const auto* const first
        = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
    return {first, first + reply->value_len};
}

std::string Connection::text(xcb_window_t window, const std::string& property)
{
    const auto reply = read(window, property);
    if (!reply || reply->format != 8)
        return {};
    return {static_cast<const char*>(xcb_get_property_value(reply.get())), reply->value_len};
}

void Connection::setNumbers(xcb_window_t window, const std::string& property,
    const std::string& type, const std::vector<std::uint32_t>& values)
{
    xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, window, atom(property), atom(type), 32,
        static_cast<std::uint32_t>(values.size()), values.data());
}

void Connection::setText(xcb_window_t window, const std::string& property, const std::string& type,
    std::string_view text)
{
    xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, window, atom(property), atom(type), 8,
        static_cast<std::uint32_t>(text.size()), text.data());
}

}
