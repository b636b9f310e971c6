#include "Quorvel/Core/SettingsShortcuts.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <system_error>

#include "Quorvel/Core/HotkeyManager.h"
#include "Quorvel/Core/NumberKeys.h"
#include "Quorvel/Platform/Translation.h"

namespace quorvel {

namespace {

constexpr auto kCommand = HotkeyModifier::command;
constexpr auto kOption = HotkeyModifier::option;
constexpr auto kControl = HotkeyModifier::control;
/// Of these few programs make use together with digits.
constexpr std::array kNumberKeyModifiers{kCommand, kOption | kCommand, kControl | kOption,
    kControl | kCommand, kControl | kOption | kCommand};

std::string statusText(HotkeyManager::State state)
{
    switch (state) {
    case HotkeyManager::State::taken:
        return tr("Taken by another program");
    case HotkeyManager::State::doubled:
        return tr("Taken by another shortcut of Quorvel");
    case HotkeyManager::State::failed:
        return tr("The system refuses this shortcut");
    case HotkeyManager::State::none:
    case HotkeyManager::State::registered:
        break;
    }
    return {};
}

std::string numberKeysText(const Hotkeys& hotkeys, std::uint32_t modifiers)
{
    return trFormat("{} to 9", shortcutText(&hotkeys, {NumberKeys::kKeyCodes.front(), modifiers}));
}

}

SettingsShortcut describeHotkey(const HotkeyManager& manager)
{
    SettingsShortcut described;
    if (auto& shortcut = manager.currentShortcut().value()) {
        described.value = {shortcut->keyCode, shortcut->modifiers};
        described.text = shortcut->displayString();
    }
    described.status = statusText(manager.state().value());
    described.recordHelp = tr("Press a key combination with modifiers. Press Esc to cancel.");
    return described;
}

SettingsChoice describeNumberKeyModifiers(
    const Hotkeys& hotkeys, const std::optional<std::uint32_t>& stored)
{
    const auto own = hotkeys.numberKeyModifiers();
    SettingsChoice choice{{}, {{{}, numberKeysText(hotkeys, own)}}};
    auto offer = [&](std::uint32_t modifiers) {
        choice.options.push_back({std::to_string(modifiers), numberKeysText(hotkeys, modifiers)});
    };
    for (auto modifiers : kNumberKeyModifiers) {
        if (modifiers != own)
            offer(modifiers);
    }
    const auto held = NumberKeys::modifiersThatHold(stored, hotkeys);
    if (held == own)
        return choice;
    choice.value = std::to_string(held);
    if (std::ranges::find(choice.options, choice.value, &SettingsChoice::Option::value)
        == choice.options.end())
        offer(held);
    return choice;
}

std::string describeTakenNumberKeys(const Hotkeys& hotkeys, const NumberKeys& keys)
{
    auto& taken = keys.taken().value();
    std::string list;
    auto add = [&](const std::string& text) { list += (list.empty() ? "" : ", ") + text; };
    for (auto shortcut = taken.begin(); shortcut != taken.end(); ++shortcut) {
        const auto modifiers = shortcut->modifiers;
        auto isAlike = [&](auto& other) { return other.modifiers == modifiers; };
        if (std::count_if(taken.begin(), taken.end(), isAlike) < std::ssize(NumberKeys::kKeyCodes))
            add(shortcutText(&hotkeys, *shortcut));
        else if (std::none_of(taken.begin(), shortcut, isAlike))
            add(numberKeysText(hotkeys, modifiers));
    }
    return list.empty() ? list : trFormat("Taken by another program: {}", list);
}

std::optional<std::uint32_t> numberKeyModifiersOf(const std::string& value)
{
    std::uint32_t modifiers = 0;
    auto* end = value.data() + value.size();
    const auto parsed = std::from_chars(value.data(), end, modifiers);
    if (parsed.ec != std::errc{} || parsed.ptr != end)
        return std::nullopt;
    return modifiers;
}

}
