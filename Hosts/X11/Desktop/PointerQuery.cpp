#include "Hosts/X11/Desktop/PointerQuery.h"

#include "Hosts/X11/Connection.h"
#include "Hosts/X11/Reply.h"

namespace quorvel::xdg::x11 {

namespace {

std::optional<Point> pointerOn(xcb_connection_t* connection, xcb_window_t root)
{
    auto reply
        = owned(xcb_query_pointer_reply(connection, xcb_query_pointer(connection, root), nullptr));
    if (!reply)
        return {};
    return Point{double(reply->root_x), double(reply->root_y)};
}

}

struct PointerQuery::Session {
    Session() : connection(xcb_connect(nullptr, &number)) { }
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;
    ~Session() { xcb_disconnect(connection); }

    int number = 0;
    xcb_connection_t* connection;
};

PointerQuery::PointerQuery(Connection& connection) : m_connection(connection)
{
}

PointerQuery::~PointerQuery() = default;

std::optional<Point> PointerQuery::ask()
{
    if (std::this_thread::get_id() == m_mainThread)
        return pointerOn(m_connection.raw(), m_connection.root());
    return askElsewhere();
}

std::optional<Point> PointerQuery::askElsewhere()
{
    std::scoped_lock lock{m_mutex};
    if (!m_session)
        m_session = std::make_unique<Session>();
    auto* connection = m_session->connection;
    auto* screen
        = xcb_connection_has_error(connection) ? nullptr : screenOf(connection, m_session->number);
    if (!screen)
        return {};
    auto pointer = pointerOn(connection, screen->root);
    // Every client is told of some things, and would keep them for ever.
    while (owned(xcb_poll_for_event(connection))) { }
    return pointer;
}

}
