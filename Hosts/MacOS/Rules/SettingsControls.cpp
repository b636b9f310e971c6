#include "Hosts/MacOS/Rules/SettingsControls.h"

#include <algorithm>

namespace quorvel {

namespace {

bool haveSameControl(const SettingsRow& one, const SettingsRow& other)
{
    if (one.id != other.id || one.title != other.title
        || one.control.index() != other.control.index())
        return false;
    auto* choice = std::get_if<SettingsChoice>(&one.control);
    return !choice || choice->options == std::get<SettingsChoice>(other.control).options;
}

bool haveSameRows(const SettingsGroup& one, const SettingsGroup& other)
{
    return one.title == other.title && std::ranges::equal(one.rows, other.rows, haveSameControl);
}

bool haveSameGroups(const SettingsPage& one, const SettingsPage& other)
{
    return one.id == other.id && std::ranges::equal(one.groups, other.groups, haveSameRows);
}

}

bool haveSameControls(const SettingsDescription& one, const SettingsDescription& other)
{
    return std::ranges::equal(one.pages, other.pages, haveSameGroups);
}

std::string_view symbolNameOf(std::string_view icon)
{
    struct PageSymbol {
        std::string_view icon;
        std::string_view name;
    };
    static constexpr PageSymbol symbols[] = {
        {"preferences-system-symbolic", "gearshape"},
        {"preferences-desktop-appearance-symbolic", "paintbrush"},
        {"input-keyboard-symbolic", "keyboard"},
        {"view-pin-symbolic", "pin"},
        {"help-about-symbolic", "info.circle"},
    };
    for (auto& symbol : symbols) {
        if (symbol.icon == icon)
            return symbol.name;
    }
    return {};
}

std::optional<ListKey> listKeyOf(const KeyEvent& event)
{
    constexpr auto kModifiers
        = KeyModifier::shift | KeyModifier::control | KeyModifier::option | KeyModifier::command;
    const auto held = event.modifiers & kModifiers;
    if (held == KeyModifier::option && event.keyCode == KeyCode::up)
        return ListKey::moveUp;
    if (held == KeyModifier::option && event.keyCode == KeyCode::down)
        return ListKey::moveDown;
    const bool deletes
        = event.keyCode == KeyCode::backspace || event.keyCode == KeyCode::forwardDelete;
    // A key that is held would empty the list.
    if (held == 0 && deletes && !event.isRepeat)
        return ListKey::remove;
    return std::nullopt;
}

std::optional<std::size_t> placeAfterKey(ListKey key, std::size_t from, std::size_t count)
{
    if (key == ListKey::moveUp && from > 0 && from < count)
        return from - 1;
    if (key == ListKey::moveDown && from + 1 < count)
        return from + 1;
    return std::nullopt;
}

}
