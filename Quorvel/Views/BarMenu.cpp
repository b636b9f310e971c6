#include "Quorvel/Views/BarMenu.h"

#include <utility>

#include "Quorvel/Core/UserSettings.h"
#include "Quorvel/Platform/Application.h"
#include "Quorvel/Version.h"

namespace quorvel {

namespace {

MenuItem toggle(std::string title, bool isOn, std::function<void(bool)> set)
{
    return {std::move(title), true, [isOn, set = std::move(set)] { set(!isOn); }, isOn, {},
        MenuItemKind::toggle};
}

template <typename Value, std::size_t count, typename Set>
MenuItem choice(std::string title, const std::array<Value, count>& values,
    const std::array<const char*, count>& names, Value current, Set set)
{
    MenuItem item{std::move(title), true, {}};
    for (std::size_t index = 0; index < count; ++index) {
        auto value = values[index];
        item.submenu.push_back({names[index], true, [set, value] { set(value); }, value == current,
            {}, MenuItemKind::choice});
    }
    return item;
}

Menu settingsMenu(UserSettings& settings)
{
    return {
        choice("Size", kAllBarSizes,
            std::array{"Small", "Medium", "Large", "Extra Large", "Largest"}, settings.barSize(),
            [&settings](BarSize size) { settings.setBarSize(size); }),
        choice("Theme", kAllBarThemes, std::array{"Frosted", "Longhorn", "Aero"}, settings.theme(),
            [&settings](BarTheme theme) { settings.setTheme(theme); }),
        choice("Scroll Up Switches To", kAllSpaceScrollUpBehaviors, std::array{"Left", "Right"},
            settings.scrollUpSpaceSwitch(),
            [&settings](SpaceScrollUpBehavior side) { settings.setScrollUpSpaceSwitch(side); }),
        {},
        toggle("Group Windows by Application", settings.groupWindowsByApp(),
            [&settings](bool isOn) { settings.setGroupWindowsByApp(isOn); }),
        toggle("Show Titles", settings.showChipTitles(),
            [&settings](bool isOn) { settings.setShowChipTitles(isOn); }),
        toggle("Show Window Names", settings.showWindowNamesInChips(),
            [&settings](bool isOn) { settings.setShowWindowNamesInChips(isOn); }),
        toggle("Show on All Displays", settings.showOnAllDisplays(),
            [&settings](bool isOn) { settings.setShowOnAllDisplays(isOn); }),
        toggle("Start at Login", settings.runAtLogin(),
            [&settings](bool isOn) { settings.setRunAtLogin(isOn); }),
    };
}

}

Menu barMenu(UserSettings& settings, Application& application, std::optional<MenuItem> monitor)
{
    Menu menu;
    menu.push_back({std::string{"Quorvel "} + kVersion, false, {}});
    menu.push_back({});
    menu.push_back({"Settings", true, {}, false, settingsMenu(settings)});
    if (monitor)
        menu.push_back(*std::move(monitor));
    menu.push_back({});
    menu.push_back({"Quit Quorvel", true, [&application] { application.terminate(); }});
    return menu;
}

}
