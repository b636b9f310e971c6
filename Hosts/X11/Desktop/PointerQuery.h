#pragma once

#include <memory>
#include <mutex>
#include <optional>
#include <thread>

#include "Quorvel/Platform/Geometry.h"

namespace quorvel::xdg::x11 {

class Connection;

/// The pointer's position. Who waits for an answer takes in events too, and the main loop would not
/// notice those: other threads ask over a connection of their own, which is made with the first
/// question. Made on the main thread.
class PointerQuery {
public:
    /// The connection outlives it.
    explicit PointerQuery(Connection&);
    ~PointerQuery();

    /// Pixels of the X screen, top-left origin; absent if the server does not answer. Any thread.
    std::optional<Point> ask();

private:
    struct Session;

    std::optional<Point> askElsewhere();

    Connection& m_connection;
    std::thread::id m_mainThread = std::this_thread::get_id();
    std::mutex m_mutex;
    std::unique_ptr<Session> m_session;
};

}
