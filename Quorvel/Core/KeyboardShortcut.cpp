#include "Quorvel/Core/KeyboardShortcut.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <string_view>
#include <utility>

#include <nlohmann/json.hpp>

#include "Quorvel/Platform/Hotkeys.h"
#include "Quorvel/Platform/KeyEvent.h"

namespace quorvel {

namespace {

struct Modifier {
    std::uint64_t flag;
    std::uint32_t mask;
    std::string_view symbol;
};
/// In the order in which they are written.
constexpr Modifier kModifiers[] = {
    {KeyModifier::control, HotkeyModifier::control, "⌃"},
    {KeyModifier::option, HotkeyModifier::option, "⌥"},
    {KeyModifier::shift, HotkeyModifier::shift, "⇧"},
    {KeyModifier::command, HotkeyModifier::command, "⌘"},
};

constexpr std::pair<std::uint32_t, std::string_view> kKeyNames[] = {
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
    {49, "Space"},
    {36, "↩"},
    {48, "⇥"},
    {53, "⎋"},
    {51, "⌫"},
    {123, "←"},
    {124, "→"},
    {126, "↑"},
    {125, "↓"},
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
};

std::optional<std::uint32_t> numberOf(const nlohmann::json& json, const char* key)
{
    auto found = json.find(key);
    if (found == json.end() || !found->is_number_integer())
        return {};
    auto number = found->get<std::int64_t>();
    return std::in_range<std::uint32_t>(number) ? std::optional{static_cast<std::uint32_t>(number)}
                                                : std::nullopt;
}

}

bool isKeyOfShortcut(std::uint32_t keyCode)
{
    constexpr std::uint32_t firstModifier = 54;
    constexpr std::uint32_t lastModifier = 63;
    return keyCode != static_cast<std::uint32_t>(KeyCode::escape)
        && (keyCode < firstModifier || keyCode > lastModifier);
}

std::string keyCodeToString(std::uint32_t keyCode)
{
    auto* found = std::ranges::find(kKeyNames, keyCode, [](auto& name) { return name.first; });
    return std::string{found == std::end(kKeyNames) ? "?" : found->second};
}

std::string KeyboardShortcut::displayString() const
{
    std::string text;
    for (auto& modifier : kModifiers) {
        if (modifiers & modifier.mask)
            text += modifier.symbol;
    }
    return text + keyCodeToString(keyCode);
}

std::uint32_t hotkeyModifiersFrom(std::uint64_t modifierFlags)
{
    std::uint32_t masks = 0;
    for (auto& modifier : kModifiers)
        masks |= modifierFlags & modifier.flag ? modifier.mask : 0;
    return masks;
}

void to_json(nlohmann::json& json, const KeyboardShortcut& shortcut)
{
    json = {{"keyCode", shortcut.keyCode}, {"modifiers", shortcut.modifiers}};
}

std::optional<KeyboardShortcut> keyboardShortcutFrom(const nlohmann::json& json)
{
    if (!json.is_object())
        return {};
    auto keyCode = numberOf(json, "keyCode");
    auto modifiers = numberOf(json, "modifiers");
    if (!keyCode || !modifiers)
        return {};
    return KeyboardShortcut{*keyCode, *modifiers};
}

}
