#pragma once

#include <chrono>
#include <functional>

#include <xcb/xcb.h>

#include "Quorvel/Platform/Dispatch.h"

namespace quorvel::xdg::x11 {

/// How often the loop turns for events that nobody waits for. Each wakes the program, which costs
/// more than to handle it. So a few come at once, and a flood (a terminal that counts in its title,
/// a window that is dragged) is let gather for some milliseconds, in which the rest is not read
/// either: but while the user does something with the bar, nothing gathers.
class TurnPace {
public:
    static constexpr int kAtOnce = 8;
    static constexpr Duration kInterval = std::chrono::milliseconds{4};
    /// After the latest input.
    static constexpr Duration kInputLasts = std::chrono::milliseconds{100};

    /// Of a turn: those that count most.
    enum class Events {
        none,
        patient, ///< what other programs' windows say of themselves, and where they are
        urgent, ///< all else: windows that come and go, the root, our own, transfers
        input, ///< the pointer and the keys
    };

    /// Told which windows are the root or our own.
    explicit TurnPace(std::function<bool(xcb_window_t)> concernsUs);

    Events kindOf(const xcb_generic_event_t&) const;

    /// How long further events may stay where they are, after a turn with these.
    Duration restAfter(Instant now, Events);

private:
    std::function<bool(xcb_window_t)> m_concernsUs;
    double m_allowance = kAtOnce; ///< turns
    Instant m_latest = Instant::min();
    Instant m_inputLastsUntil = Instant::min();
};

}
