#pragma once

#include <functional>

#include "Quorvel/Platform/Dispatch.h"

namespace quorvel {

/// Leads a value from 0 to 1, slowly at both ends, one step a frame. Nothing runs while nothing
/// moves. Main thread.
class Animation {
public:
    explicit Animation(Dispatch& dispatch) : m_dispatch(dispatch) { }

    /// Replaces what is running. The first step comes at once, the last one is exactly 1; without a
    /// length they are the same.
    void start(Duration length, Duration frame, std::function<void(double)> onStep);
    void stop() { m_next = {}; }
    bool isRunning() const { return m_next.isPending(); }

private:
    void step();

    Dispatch& m_dispatch;
    Duration m_length{};
    Duration m_frame{};
    Instant m_start;
    std::function<void(double)> m_onStep;
    WorkItem m_next;
};

}
