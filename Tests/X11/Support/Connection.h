#pragma once

#include <cstdint>
#include <map>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include <xcb/xcb.h>

#include "Hosts/X11/Reply.h"

namespace quorvel::x11tests {

struct Frame {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;

    int bottom() const { return y + height; }
    friend bool operator==(const Frame&, const Frame&) = default;
    friend std::ostream& operator<<(std::ostream& out, const Frame& frame)
    {
        return out << frame.width << 'x' << frame.height << '+' << frame.x << '+' << frame.y;
    }
};

using xdg::x11::Reply;

/// A connection to the X server, with its atoms by name.
class Connection {
public:
    explicit Connection(const std::string& display);
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;
    ~Connection();

    xcb_connection_t* get() const { return m_connection; }
    xcb_window_t root() const { return m_root; }
    xcb_atom_t atom(const std::string& name);
    /// Waits for the answer to a request; null when there is none.
    template <typename Type, typename Cookie>
    Reply<Type> wait(
        Type* (*reply)(xcb_connection_t*, Cookie, xcb_generic_error_t**), Cookie cookie) const
    {
        return Reply<Type>{reply(m_connection, cookie, nullptr)};
    }
    /// Waits until the server has seen all that was sent.
    void sync() { wait(xcb_get_input_focus_reply, xcb_get_input_focus(m_connection)); }
    /// The server's time now. For a connection without windows: other events are dropped.
    std::uint32_t serverTime();
    /// True after the server or the window manager has cut the connection.
    bool isCut() const { return xcb_connection_has_error(m_connection) != 0; }

    /// A client message about a window, to whoever selected one of the events on the other, or to
    /// that window's own client.
    void send(xcb_window_t to, std::uint32_t events, xcb_window_t about, const std::string& message,
        const std::vector<std::uint32_t>& data);

    /// The 32-bit items of a property, empty when it is absent or has another format.
    std::vector<std::uint32_t> numbers(xcb_window_t, const std::string& property);
    std::string text(xcb_window_t, const std::string& property);
    void setNumbers(xcb_window_t, const std::string& property, const std::string& type,
        const std::vector<std::uint32_t>&);
    void setText(
        xcb_window_t, const std::string& property, const std::string& type, std::string_view text);

private:
    using PropertyReply = Reply<xcb_get_property_reply_t>;

    PropertyReply read(xcb_window_t, const std::string& property);

    xcb_connection_t* m_connection;
    xcb_window_t m_root = XCB_NONE;
    std::map<std::string, xcb_atom_t> m_atoms;
};

}
