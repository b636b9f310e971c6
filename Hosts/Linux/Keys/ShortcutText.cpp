#include "Hosts/Linux/Keys/ShortcutText.h"

#include <algorithm>
#include <iterator>

#include <glib.h>

#include "Quorvel/Platform/Hotkeys.h"
#include "Quorvel/Platform/KeyName.h"
#include "Quorvel/Platform/Translation.h"

namespace quorvel::xdg {

namespace {

/// A name in the user's language.
struct Word {
    std::uint32_t key;
    std::string (*text)();
};

/// A print that is the same in every language.
struct Sign {
    std::uint32_t key;
    std::string_view text;
};

/// In the order in which they are written.
constexpr Word kModifiers[] = {
    {HotkeyModifier::control, [] { return tr("Ctrl"); }},
    {HotkeyModifier::option, [] { return tr("Alt"); }},
    {HotkeyModifier::shift, [] { return tr("Shift"); }},
    {HotkeyModifier::command, [] { return tr("Super"); }},
};

/// Keys that every layout has the same on; so have the function keys and the number pad.
constexpr Word kWords[] = {
    {49, [] { return tr("Space"); }},
    {36, [] { return tr("Enter"); }},
    {48, [] { return tr("Tab"); }},
    {53, [] { return tr("Esc"); }},
    {51, [] { return tr("Backspace"); }},
    {117, [] { return tr("Delete"); }},
    {114, [] { return tr("Insert"); }},
    {115, [] { return tr("Home"); }},
    {119, [] { return tr("End"); }},
    {116, [] { return tr("Page Up"); }},
    {121, [] { return tr("Page Down"); }},
    {123, [] { return tr("Left"); }},
    {124, [] { return tr("Right"); }},
    {126, [] { return tr("Up"); }},
    {125, [] { return tr("Down"); }},
    {110, [] { return tr("Menu"); }},
    {105, [] { return tr("Print"); }},
    {107, [] { return tr("Scroll Lock"); }},
    {113, [] { return tr("Pause"); }},
    {71, [] { return tr("Num Lock"); }},
    {57, [] { return tr("Caps Lock"); }},
    {76, [] { return tr("Keypad Enter"); }},
    {102, [] { return tr("Eisu"); }},
    {104, [] { return tr("Kana"); }},
    {72, [] { return tr("Volume Up"); }},
    {73, [] { return tr("Volume Down"); }},
    {74, [] { return tr("Mute"); }},
    {54, [] { return tr("Right Super"); }},
    {55, [] { return tr("Super"); }},
    {56, [] { return tr("Shift"); }},
    {60, [] { return tr("Right Shift"); }},
    {58, [] { return tr("Alt"); }},
    {61, [] { return tr("Right Alt"); }},
    {59, [] { return tr("Ctrl"); }},
    {62, [] { return tr("Right Ctrl"); }},
};

constexpr Sign kFurtherFunctionKeys[] = {
    {106, "F16"},
    {64, "F17"},
    {79, "F18"},
    {80, "F19"},
    {90, "F20"},
};

constexpr Sign kKeypad[] = {
    {82, "0"},
    {83, "1"},
    {84, "2"},
    {85, "3"},
    {86, "4"},
    {87, "5"},
    {88, "6"},
    {89, "7"},
    {91, "8"},
    {92, "9"},
    {65, "."},
    {67, "*"},
    {69, "+"},
    {75, "/"},
    {78, "-"},
    {81, "="},
    {95, ","},
};

/// What a US keyboard has on keys that are neither letters nor digits, and a Japanese or ISO one on
/// those that it lacks.
constexpr Sign kSigns[] = {
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

template <typename Name, std::size_t count>
const Name* find(const Name (&names)[count], std::uint32_t key)
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
    if (auto* word = find(kWords, macKeyCode))
        return word->text();
    if (auto* function = find(kFurtherFunctionKeys, macKeyCode))
        return std::string{function->text};
    const auto name = keyName(macKeyCode);
    if (name && name->size() > 1) // a function key's
        return std::string{*name};
    if (auto* sign = find(kKeypad, macKeyCode))
        return trFormat("Keypad {}", sign->text);
    if (auto printed = capital(character); !printed.empty())
        return printed;
    if (auto* printed = find(kSigns, macKeyCode))
        return std::string{printed->text};
    return name ? std::string{*name} : trFormat("Key {}", macKeyCode);
}

}

std::string shortcutText(
    std::uint32_t macKeyCode, std::uint32_t modifiers, std::string_view character)
{
    std::string text;
    for (auto& modifier : kModifiers) {
        if (modifiers & modifier.key)
            text.append(modifier.text()) += '+';
    }
    return text + keyText(macKeyCode, character);
}

}
