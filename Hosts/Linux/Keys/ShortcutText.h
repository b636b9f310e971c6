#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace quorvel::xdg {

/// A shortcut as Linux programs write it, in the user's language: "Ctrl+Alt+K", "Super+Space".
///
/// The key code is the Mac's, the modifiers are of `HotkeyModifier`. `character` is what the
/// present layout types with the key alone, in UTF-8; it names the keys whose print depends on the
/// layout, and if it is empty or no character that can be seen, a US keyboard does. A key without a
/// name has its number: "Key 200".
std::string shortcutText(
    std::uint32_t macKeyCode, std::uint32_t modifiers, std::string_view character = {});

}
