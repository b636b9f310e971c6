#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "Quorvel/Platform/SettingsDescription.h"

namespace quorvel {

class HotkeyManager;
class Hotkeys;
class NumberKeys;

/// The shortcut as a row shows it, and why it does not work if it does not.
SettingsShortcut describeHotkey(const HotkeyManager&);

/// The modifiers that the keys 1 to 9 can have, as the host writes them. What holds is among them;
/// empty is the host's own choice.
SettingsChoice describeNumberKeyModifiers(
    const Hotkeys&, const std::optional<std::uint32_t>& stored);
/// Which of them do not work because another program has them; empty if all do.
std::string describeTakenNumberKeys(const Hotkeys&, const NumberKeys&);
/// The other way: what to store for one of the values; absent for what is no number.
std::optional<std::uint32_t> numberKeyModifiersOf(const std::string& value);

}
