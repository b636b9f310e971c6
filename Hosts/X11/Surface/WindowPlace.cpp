#include "Hosts/X11/Surface/WindowPlace.h"

#include <xcb/xcbext.h>

#include "Hosts/X11/Connection.h"

namespace quorvel::xdg::x11 {

WindowPlaceQuery::WindowPlaceQuery(Connection& connection, xcb_window_t window)
    : m_connection(connection)
    , m_window(window)
{
}

WindowPlaceQuery::~WindowPlaceQuery()
{
    discard();
}

void WindowPlaceQuery::ask()
{
    discard();
    auto* raw = m_connection.raw();
    m_origin = xcb_translate_coordinates(raw, m_window, m_connection.root(), 0, 0);
    m_size = xcb_get_geometry(raw, m_window);
    m_isAsked = true;
    m_hasOrigin = m_hasSize = false;
}

/// True once there is an answer, which may be an error; the reply is then null.
template <typename Type> bool WindowPlaceQuery::poll(unsigned sequence, Reply<Type>& reply)
{
    void* answer = nullptr;
    xcb_generic_error_t* error = nullptr;
    if (!xcb_poll_for_reply(m_connection.raw(), sequence, &answer, &error))
        return false;
    owned(error).reset();
    reply.reset(static_cast<Type*>(answer));
    return true;
}

std::optional<Rect> WindowPlaceQuery::takeAnswer()
{
    if (!m_isAsked)
        return std::nullopt;
    if (Reply<xcb_translate_coordinates_reply_t> reply;
        !m_hasOrigin && poll(m_origin.sequence, reply)) {
        m_hasOrigin = true;
        if (reply)
            m_place.x = reply->dst_x, m_place.y = reply->dst_y;
    }
    if (Reply<xcb_get_geometry_reply_t> reply;
        m_hasOrigin && !m_hasSize && poll(m_size.sequence, reply)) {
        m_hasSize = true;
        if (reply)
            m_place.width = reply->width, m_place.height = reply->height;
    }
    if (!m_hasOrigin || !m_hasSize)
        return std::nullopt;
    m_isAsked = false;
    return m_place;
}

void WindowPlaceQuery::discard()
{
    if (!m_isAsked)
        return;
    if (!m_hasOrigin)
        xcb_discard_reply(m_connection.raw(), m_origin.sequence);
    if (!m_hasSize)
        xcb_discard_reply(m_connection.raw(), m_size.sequence);
    m_isAsked = false;
}

}
