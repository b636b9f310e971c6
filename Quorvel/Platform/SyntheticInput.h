#pragma once

#include <cstdint>
#include <optional>

#include "Quorvel/Platform/Geometry.h"

namespace quorvel {

/// The keys that trigger one of the system's own actions.
struct SymbolicHotKey {
    std::uint16_t keyCode = 0; ///< virtual key code of the key table
    std::uint64_t modifierFlags = 0;

    friend bool operator==(const SymbolicHotKey&, const SymbolicHotKey&) = default;
};

enum class KeyAction { down, up };
enum class PointerPost { moved, pressed, dragged, released };

/// Keys and pointer events that the program generates, and the system's hot keys for which it does
/// so. Main thread.
class SyntheticInput {
public:
    virtual ~SyntheticInput() = default;

    /// By the system's number for the action. Absent where there is no such hot key, or it has no
    /// keys.
    virtual std::optional<SymbolicHotKey> symbolicHotKey(int identifier) const = 0;
    virtual bool isSymbolicHotKeyEnabled(int identifier) const = 0;
    /// The user's own setting, which outlives the program. False where the system refuses.
    virtual bool setSymbolicHotKeyEnabled(int identifier, bool isEnabled) = 0;
    /// As if the user had done it, whatever program has the keyboard or is under the pointer.
    virtual void postKeyEvent(std::uint16_t keyCode, KeyAction, std::uint64_t modifierFlags) = 0;
    virtual bool canPostPointerEvents() const = 0;
    /// Of the primary button. Points, global top-left origin.
    virtual void postPointerEvent(PointerPost, Point) = 0;
};

}
