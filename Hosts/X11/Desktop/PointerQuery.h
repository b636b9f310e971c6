#pragma once

#include <memory>
#include <optional>

#include "Quorvel/Platform/Geometry.h"

namespace quorvel::xdg::x11 {

/// Where the pointer is, asked over a connection of its own, so that whoever asks often keeps
/// nobody waiting who uses the bar's. It is made with the first question. Any one thread at a time.
class PointerQuery {
public:
    PointerQuery();
    ~PointerQuery();

    /// Pixels of the X screen, top-left origin; absent if the server does not answer.
    std::optional<Point> ask();

private:
    struct Session;
    std::unique_ptr<Session> m_session;
};

}
