#include "Hosts/X11/Desktop/PointerQuery.h"

#include "Hosts/X11/Connection.h"
#include "Hosts/X11/Reply.h"

namespace quorvel::xdg::x11 {

struct PointerQuery::Session {
    Session() : connection(xcb_connect(nullptr, &number)) { }
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;
    ~Session() { xcb_disconnect(connection); }

    int number = 0;
    xcb_connection_t* connection;
};

PointerQuery::PointerQuery() = default;
PointerQuery::~PointerQuery() = default;

std::optional<Point> PointerQuery::ask()
{
    if (!m_session)
        m_session = std::make_unique<Session>();
    auto* connection = m_session->connection;
    auto* screen
        = xcb_connection_has_error(connection) ? nullptr : screenOf(connection, m_session->number);
    if (!screen)
        return {};
    auto reply = owned(
        xcb_query_pointer_reply(connection, xcb_query_pointer(connection, screen->root), nullptr));
    // Every client is told of some things, and would keep them for ever.
    while (owned(xcb_poll_for_event(connection))) { }
    if (!reply)
        return {};
    return Point{double(reply->root_x), double(reply->root_y)};
}

}
