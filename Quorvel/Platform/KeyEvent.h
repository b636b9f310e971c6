#pragma once

#include <cstdint>
#include <string>

namespace quorvel {

/// A key by its position, whatever is printed on it: the virtual key codes of the Mac's keyboards,
/// on every host. The named ones mean the same on every layout; any other number may occur.
enum class KeyCode : std::uint16_t {
    enter = 36,
    tab = 48,
    space = 49,
    backspace = 51,
    escape = 53,
    keypadEnter = 76,
    f10 = 109,
    menu = 110,
    insert = 114, ///< Help on the Mac
    home = 115,
    pageUp = 116,
    forwardDelete = 117,
    end = 119,
    pageDown = 121,
    left = 123,
    right = 124,
    down = 125,
    up = 126,
    unknown = 0xFFFF, ///< a key that the Mac does not have
};

/// Modifier bits, with the values of the Mac's events.
struct KeyModifier {
    static constexpr std::uint64_t shift = 1U << 17;
    static constexpr std::uint64_t control = 1U << 18;
    static constexpr std::uint64_t option = 1U << 19; ///< Alt
    static constexpr std::uint64_t command = 1U << 20; ///< Super, the Windows key
};

/// A key was pressed.
struct KeyEvent {
    KeyCode keyCode = KeyCode::unknown;
    /// The text it types, in UTF-8; may be empty or a control character.
    std::string characters{};
    /// The text it would type with no modifier but Shift.
    std::string charactersIgnoringModifiers{};
    std::uint64_t modifiers = 0; ///< of `KeyModifier`
    bool isRepeat = false; ///< the key is being held down

    bool has(std::uint64_t modifier) const { return (modifiers & modifier) != 0; }
    /// Whether the characters are for whatever takes text.
    bool typesText() const
    {
        auto first = characters.empty() ? '\0' : characters.front();
        bool isControl = static_cast<unsigned char>(first) < 0x20 || first == 0x7F;
        return !isControl && !has(KeyModifier::control) && !has(KeyModifier::option)
            && !has(KeyModifier::command);
    }
    /// Asks for the menu of whatever has the focus: the menu key, or its substitute on keyboards
    /// without one: Shift-F10 on most desktops, Control-Return on the Mac since macOS 15.
    bool asksForMenu() const
    {
        return keyCode == KeyCode::menu || (keyCode == KeyCode::f10 && has(KeyModifier::shift))
            || (keyCode == KeyCode::enter && has(KeyModifier::control));
    }
};

}
