#pragma once

#include <cstdint>

#include "Quorvel/Platform/PointerEvent.h"

namespace quorvel {

/// Bits of a gesture's phase, with the values of `NSEventPhase`.
namespace scroll {

inline constexpr std::uint64_t kBegan = 1 << 0;
inline constexpr std::uint64_t kStationary = 1 << 1;
inline constexpr std::uint64_t kChanged = 1 << 2;
inline constexpr std::uint64_t kEnded = 1 << 3;
inline constexpr std::uint64_t kCancelled = 1 << 4;
inline constexpr std::uint64_t kMayBegin = 1 << 5;

}

/// What the system says of a wheel or a touchpad.
struct SystemScroll {
    Point location{}; ///< points, origin at the surface's top left
    double deltaX = 0;
    double deltaY = 0;
    bool hasPreciseDeltas = false; ///< the deltas are points; otherwise lines
    bool isDirectionInverted = false;
    std::uint64_t phase = 0; ///< of the fingers' gesture
    std::uint64_t momentumPhase = 0; ///< of what goes on after it; 0: nothing does
};

/// A wheel counts lines, more of them the faster it turns; each event is a notch all the same.
ScrollEvent scrollEventOf(const SystemScroll&);

}
