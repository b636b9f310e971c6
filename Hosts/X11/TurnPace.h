#pragma once

#include <chrono>

#include <xcb/xcb.h>

#include "Quorvel/Platform/Dispatch.h"

namespace quorvel::xdg::x11 {

/// How often the loop turns for events that nobody waits for. Each wakes the program, which costs
/// more than to handle it. So a few come at once, and a flood (a terminal that counts in its title,
/// a window that is dragged) is let gather, for a quarter of a frame.
class TurnPace {
public:
    static constexpr int kAtOnce = 8;
    static constexpr Duration kInterval = std::chrono::milliseconds{4};

    /// Of a turn: those that count most.
    enum class Events {
        none,
        patient, ///< what other programs' windows say of themselves, and where they are
        urgent, ///< all else: what users do, windows that come and go, the root
    };
    static Events kindOf(const xcb_generic_event_t&, xcb_window_t root);

    /// How long further events may stay where they are.
    Duration restAfter(Instant now, Events);

private:
    double m_allowance = kAtOnce; ///< turns
    Instant m_latest = Instant::min();
};

}
