#pragma once

#include <functional>

#include "Quorvel/Platform/Surfaces.h"

namespace quorvel {

/// Keeps the notches of a wheel that come while a switch of spaces is under way and hands them on
/// one by one, so that three quick notches are three steps. Fingers on a surface send many events
/// for one step: theirs are not kept. Main thread.
class WheelNotches {
public:
    /// Whether a switch is under way, and what makes a step. The bar is that of this space.
    struct Steps {
        std::function<bool()> isUnderWay;
        std::function<void(const ScrollEvent&, SpaceID bar)> make;
        /// The space that the bar's display shows now.
        std::function<SpaceID(SpaceID bar)> currentSpace;
    };

    explicit WheelNotches(Steps steps) : m_steps(std::move(steps)) { }

    void scroll(const ScrollEvent&, SpaceID bar);
    void switchDidEnd();

private:
    Steps m_steps;
    int m_kept = 0; ///< upwards positive: one back takes one forward away
    ScrollEvent m_last;
    SpaceID m_bar{};
};

}
