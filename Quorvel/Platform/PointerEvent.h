#pragma once

#include <cmath>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "Quorvel/Platform/Geometry.h"

namespace quorvel {

enum class PointerButton { none, primary, secondary, middle };

struct PointerButtons {
    bool primary = false;
    bool secondary = false;
    bool middle = false;

    bool contains(PointerButton button) const
    {
        return (button == PointerButton::primary && primary)
            || (button == PointerButton::secondary && secondary)
            || (button == PointerButton::middle && middle);
    }
};

enum class PointerAction { entered, moved, exited, pressed, released };

/// What the pointer did, as the system reports it: each button separately, and moves over other
/// surfaces too while a button is down. Interpreting it is up to the client.
struct PointerEvent {
    PointerAction action = PointerAction::moved;
    Point location; ///< points, origin at the surface's top left
    PointerButton button = PointerButton::none; ///< the one that was pressed or released
    /// The buttons that were down just before; absent where the event does not say.
    std::optional<PointerButtons> held{};
    std::uint64_t modifiers = 0; ///< the keys that are down, of `KeyModifier`
};

enum class ScrollUnit {
    points, ///< from a touchpad or another surface that follows the fingers
    notches, ///< of a wheel
};
/// The phase of the fingers' gesture; none where the device does not report it, as with wheels.
enum class ScrollPhase { none, began, changed, ended };
enum class ScrollAxis { horizontal, vertical };

struct ScrollEvent {
    Point location;
    double deltaX = 0;
    double deltaY = 0;
    /// The device reports the direction of the content (natural scrolling), not of the fingers.
    bool isDirectionInverted = false;
    ScrollUnit unit = ScrollUnit::notches;
    ScrollPhase phase = ScrollPhase::none;
    bool isMomentum = false; ///< it continues after the fingers have left

    /// The axis with the larger delta.
    ScrollAxis axis() const
    {
        return std::abs(deltaX) > std::abs(deltaY) ? ScrollAxis::horizontal : ScrollAxis::vertical;
    }
};

enum class DropAction { entered, moved, exited, dropped };

/// Files dragged over a surface from another program.
struct DropEvent {
    DropAction action = DropAction::moved;
    Point location; ///< as in a pointer event
    std::vector<std::string> paths; ///< absolute; with `dropped` only
};

}
