#pragma once

#include <functional>

#include "Quorvel/Platform/Dispatch.h"

namespace quorvel {

/// Animates a value from 0 to 1, slowly at both ends, one step per frame. Uses no timer while idle.
/// Main thread.
class Animation {
public:
    explicit Animation(Dispatch& dispatch) : m_dispatch(dispatch) { }

    /// Replaces a running animation. The first step is made at once, the last one is exactly 1;
    /// with a duration of zero they are the same.
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
