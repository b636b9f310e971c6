#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include <nlohmann/json_fwd.hpp>

namespace quorvel {

class Hotkeys;

/// A key by its place, with modifiers. The numbers are the Mac's on every host, so that a settings
/// file can move from one system to another.
struct KeyboardShortcut {
    std::uint32_t keyCode = 0; ///< virtual key code
    std::uint32_t modifiers = 0; ///< of `HotkeyModifier`

    /// As the Mac writes it: "⌃⌥K". The key has its name on a US keyboard, "?" if it has none.
    std::string displayString() const;

    friend bool operator==(const KeyboardShortcut&, const KeyboardShortcut&) = default;
};

/// False for Escape, which ends recording, and for keys that are modifiers themselves.
bool isKeyOfShortcut(std::uint32_t keyCode);

std::string keyCodeToString(std::uint32_t keyCode);

/// As programs of this system write it, which the Mac's do where that is not known.
std::string shortcutText(const Hotkeys*, const KeyboardShortcut&);

/// Of `KeyModifier` bits those that a shortcut can have, as bits of `HotkeyModifier`.
std::uint32_t hotkeyModifiersFrom(std::uint64_t modifierFlags);

/// An object with "keyCode" and "modifiers".
void to_json(nlohmann::json&, const KeyboardShortcut&);
/// Absent if it is anything else, or a number does not fit.
std::optional<KeyboardShortcut> keyboardShortcutFrom(const nlohmann::json&);

}
