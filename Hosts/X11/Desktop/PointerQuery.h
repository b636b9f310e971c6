#pragma once

#include <memory>
#include <optional>

#include "Quorvel/Platform/Geometry.h"

namespace quorvel::xdg::x11 {

/// The pointer's position, asked over a separate connection, so that frequent questions never delay
/// the users of the bar's own. The connection is made with the first question. Any one thread at a
/// time.
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
