#pragma once

#include <map>

#include "Quorvel/Platform/Dispatch.h"
#include "Quorvel/Platform/Identifiers.h"
#include "Quorvel/Platform/Published.h"

namespace quorvel::xdg::x11 {

class Connection;
class Monitors;

/// How long each monitor shows one frame, from RandR; queried once, when something is first painted
/// twice in a row. Main thread.
class FrameIntervals {
public:
    FrameIntervals(Connection&, const Monitors&);

    Duration of(DisplayNumber);

private:
    Connection& m_connection;
    const Monitors& m_monitors;
    std::map<DisplayNumber, Duration> m_known;
    Subscription m_changes;
};

}
