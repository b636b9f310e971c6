#include "Quorvel/Core/KeyboardShortcut.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <string_view>
#include <utility>

#include <nlohmann/json.hpp>

#include "Quorvel/Platform/Hotkeys.h"
#include "Quorvel/Platform/KeyEvent.h"
#include "Quorvel/Platform/KeyName.h"
#include "Quorvel/Platform/Translation.h"

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

constexpr std::uint32_t kSpaceBar = 49; // the only key whose name is a word

/// What the Mac has symbols for.
constexpr KeyName kSymbols[] = {
    {36, "↩"},
    {48, "⇥"},
    {53, "⎋"},
    {51, "⌫"},
    {117, "⌦"},
    {123, "←"},
    {124, "→"},
    {126, "↑"},
    {125, "↓"},
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
    if (keyCode == kSpaceBar)
        return tr("Space");
    auto* symbol = std::ranges::find(kSymbols, keyCode, &KeyName::keyCode);
    if (symbol != std::end(kSymbols))
        return std::string{symbol->name};
    return std::string{keyName(keyCode).value_or("?")};
}

std::string shortcutText(const Hotkeys* hotkeys, const KeyboardShortcut& shortcut)
{
    auto text = hotkeys ? hotkeys->shortcutText(shortcut.keyCode, shortcut.modifiers) : "";
    return text.empty() ? shortcut.displayString() : text;
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
