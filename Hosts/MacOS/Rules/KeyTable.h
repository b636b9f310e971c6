#pragma once

#include <cstdint>
#include <string>

#include "Quorvel/Platform/KeyEvent.h"

namespace quorvel {

/// Characters of a private use, which AppKit gives to the keys that type nothing.
namespace key_character {

inline constexpr char16_t kFirst = 0xF700;
inline constexpr char16_t kForwardDelete = 0xF728;
inline constexpr char16_t kLast = 0xF747;

}

/// What the system says of a key that went down.
struct SystemKeyPress {
    std::uint16_t keyCode = 0;
    std::string characters{}; ///< UTF-8
    std::string charactersIgnoringModifiers{};
    std::uint64_t modifierFlags = 0;
    bool isRepeat = false;
};

KeyEvent keyEventOf(SystemKeyPress);

/// Of `KeyModifier`. The other flags say which of two keys of a kind is held, that Caps Lock is on,
/// or that the key is an arrow.
constexpr std::uint64_t keyModifiersOf(std::uint64_t modifierFlags)
{
    return modifierFlags
        & (KeyModifier::shift | KeyModifier::control | KeyModifier::option | KeyModifier::command);
}

/// What a menu of the system calls the key; 0 for keys that it has no name for here.
char16_t menuCharacterOf(KeyCode);

}
