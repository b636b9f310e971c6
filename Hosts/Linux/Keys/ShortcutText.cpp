#include "Hosts/Linux/Keys/ShortcutText.h"

#include <algorithm>
#include <iterator>

#include <glib.h>

#include "Quorvel/Platform/Hotkeys.h"

namespace quorvel::xdg {

namespace {

struct Name {
    std::uint32_t key;
    std::string_view text;
};

/// In the order in which they are written.
constexpr Name kModifiers[] = {
    {HotkeyModifier::control, "Ctrl"},
    {HotkeyModifier::option, "Alt"},
    {HotkeyModifier::shift, "Shift"},
    {HotkeyModifier::command, "Super"},
};

/// Keys that every layout has the same on.
constexpr Name kFixed[] = {
    {49, "Space"},
    {36, "Enter"},
    {48, "Tab"},
    {53, "Esc"},
    {51, "Backspace"},
    {117, "Delete"},
    {114, "Insert"},
    {115, "Home"},
    {119, "End"},
    {116, "Page Up"},
    {121, "Page Down"},
    {123, "Left"},
    {124, "Right"},
    {126, "Up"},
    {125, "Down"},
    {110, "Menu"},
    {105, "Print"},
    {107, "Scroll Lock"},
    {113, "Pause"},
    {71, "Num Lock"},
    {57, "Caps Lock"},
    {122, "F1"},
    {120, "F2"},
    {99, "F3"},
    {118, "F4"},
    {96, "F5"},
    {97, "F6"},
    {98, "F7"},
    {100, "F8"},
    {101, "F9"},
    {109, "F10"},
    {103, "F11"},
    {111, "F12"},
    {106, "F16"},
    {64, "F17"},
    {79, "F18"},
    {80, "F19"},
    {90, "F20"},
    {82, "Keypad 0"},
    {83, "Keypad 1"},
    {84, "Keypad 2"},
    {85, "Keypad 3"},
    {86, "Keypad 4"},
    {87, "Keypad 5"},
    {88, "Keypad 6"},
    {89, "Keypad 7"},
    {91, "Keypad 8"},
    {92, "Keypad 9"},
    {65, "Keypad ."},
    {67, "Keypad *"},
    {69, "Keypad +"},
    {75, "Keypad /"},
    {78, "Keypad -"},
    {81, "Keypad ="},
    {95, "Keypad ,"},
    {76, "Keypad Enter"},
    {102, "Eisu"},
    {104, "Kana"},
    {72, "Volume Up"},
    {73, "Volume Down"},
    {74, "Mute"},
    {54, "Right Super"},
    {55, "Super"},
    {56, "Shift"},
    {60, "Right Shift"},
    {58, "Alt"},
    {61, "Right Alt"},
    {59, "Ctrl"},
    {62, "Right Ctrl"},
};

/// What a US keyboard has on the others, and a Japanese or ISO one on those that it lacks.
constexpr Name kLettersAndSigns[] = {
    {0, "A"},
    {11, "B"},
    {8, "C"},
    {2, "D"},
    {14, "E"},
    {3, "F"},
    {5, "G"},
    {4, "H"},
    {34, "I"},
    {38, "J"},
    {40, "K"},
    {37, "L"},
    {46, "M"},
    {45, "N"},
    {31, "O"},
    {35, "P"},
    {12, "Q"},
    {15, "R"},
    {1, "S"},
    {17, "T"},
    {32, "U"},
    {9, "V"},
    {13, "W"},
    {7, "X"},
    {16, "Y"},
    {6, "Z"},
    {29, "0"},
    {18, "1"},
    {19, "2"},
    {20, "3"},
    {21, "4"},
    {23, "5"},
    {22, "6"},
    {26, "7"},
    {28, "8"},
    {25, "9"},
    {50, "`"},
    {27, "-"},
    {24, "="},
    {33, "["},
    {30, "]"},
    {42, "\\"},
    {41, ";"},
    {39, "'"},
    {43, ","},
    {47, "."},
    {44, "/"},
    {10, "<"},
    {93, "¥"},
    {94, "_"},
};

template <std::size_t count> const Name* find(const Name (&names)[count], std::uint32_t key)
{
    auto* found = std::ranges::find(names, key, &Name::key);
    return found == std::end(names) ? nullptr : found;
}

/// As it is printed on a key; empty if it is not one character that can be seen.
std::string capital(std::string_view character)
{
    const auto size = static_cast<gssize>(character.size());
    if (character.empty() || !g_utf8_validate(character.data(), size, nullptr))
        return {};
    const auto first = g_utf8_get_char(character.data());
    if (g_utf8_strlen(character.data(), size) != 1 || !g_unichar_isgraph(first))
        return {};
    char text[6];
    const auto length = g_unichar_to_utf8(g_unichar_toupper(first), text);
    return {text, static_cast<std::size_t>(length)};
}

std::string keyText(std::uint32_t macKeyCode, std::string_view character)
{
    if (auto* fixed = find(kFixed, macKeyCode))
        return std::string{fixed->text};
    if (auto printed = capital(character); !printed.empty())
        return printed;
    if (auto* printed = find(kLettersAndSigns, macKeyCode))
        return std::string{printed->text};
    return "Key " + std::to_string(macKeyCode);
}

}

std::string shortcutText(
    std::uint32_t macKeyCode, std::uint32_t modifiers, std::string_view character)
{
    std::string text;
    for (auto& modifier : kModifiers) {
        if (modifiers & modifier.key)
            text.append(modifier.text) += '+';
    }
    return text + keyText(macKeyCode, character);
}

}
