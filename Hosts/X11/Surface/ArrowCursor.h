#pragma once

#include <optional>

#include <xcb/xcb.h>

namespace quorvel::xdg::x11 {

class Connection;

/// The pointer over windows of ours that stand on the root, whose own cursor may be anything; a
/// bare root has a cross. Main thread; the server frees it with this object.
class ArrowCursor {
public:
    explicit ArrowCursor(Connection& connection) : m_connection(connection) { }
    ~ArrowCursor();
    ArrowCursor(const ArrowCursor&) = delete;
    ArrowCursor& operator=(const ArrowCursor&) = delete;

    /// As the user's cursor theme draws it, else the server's own; made when it is first asked for.
    /// None, which leaves the root's, where the server has neither.
    xcb_cursor_t id();

private:
    xcb_cursor_t load() const;

    Connection& m_connection;
    std::optional<xcb_cursor_t> m_id;
};

}
