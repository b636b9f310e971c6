#pragma once

#include <functional>
#include <vector>

#include <xcb/xcb.h>

#include "Quorvel/Platform/Published.h"

namespace quorvel::xdg::x11 {

class Connection;

/// The server's current time, which managers compare with the user's last input: obtained by an
/// empty change of a property of our own, whose event carries it. Main thread.
class ServerTime {
public:
    explicit ServerTime(Connection&);
    ~ServerTime();
    ServerTime(const ServerTime&) = delete;
    ServerTime& operator=(const ServerTime&) = delete;

    /// Calls back once, in a later turn.
    void ask(std::function<void(xcb_timestamp_t)>);

private:
    void handle(const xcb_generic_event_t*);

    Connection& m_connection;
    xcb_window_t m_window;
    std::vector<std::function<void(xcb_timestamp_t)>> m_waiting;
    Subscription m_events;
};

}
