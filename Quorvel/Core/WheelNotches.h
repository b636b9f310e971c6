#pragma once

#include <functional>

#include "Quorvel/Platform/Surfaces.h"

namespace quorvel {

/// Keeps the notches of a wheel that arrive during a switch of spaces and hands them on one by one,
/// so that three quick notches are three steps. Fingers on a touchpad send many events for one
/// step: those are not kept. Main thread.
class WheelNotches {
public:
    /// Whether a switch is in progress, and how to make a step. The space identifies the bar.
    struct Steps {
        std::function<bool()> isUnderWay;
        std::function<void(const ScrollEvent&, SpaceID bar)> make;
        /// The space that the bar's display currently shows.
        std::function<SpaceID(SpaceID bar)> currentSpace;
    };

    explicit WheelNotches(Steps steps) : m_steps(std::move(steps)) { }

    void scroll(const ScrollEvent&, SpaceID bar);
    void switchDidEnd();

private:
    Steps m_steps;
    int m_kept = 0; ///< upwards positive: opposite notches cancel out
    ScrollEvent m_last;
    SpaceID m_bar{};
};

}
