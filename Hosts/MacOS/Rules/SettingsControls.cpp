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

}
