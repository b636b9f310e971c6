#include "Quorvel/Core/SettingsPages.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <utility>

#include <fmt/format.h>

#include "Quorvel/Platform/Translation.h"
#include "Quorvel/Version.h"

namespace quorvel {

namespace {

using FileState = UserSettings::FileState;

SettingsRow toggle(const char* id, std::string title, bool value, std::string help = {})
{
    return {id, std::move(title), std::move(help), true, SettingsToggle{value}};
}

template <typename Value, std::size_t count>
SettingsRow choice(const char* id, std::string title, const std::string& value,
    const std::array<Value, count>& values, const std::array<std::string, count>& titles)
{
    SettingsChoice control{value, {}};
    for (std::size_t index = 0; index < count; ++index)
        control.options.push_back({std::string{rawValue(values[index])}, titles[index]});
    return {id, std::move(title), {}, true, std::move(control)};
}

/// What is no longer installed has no name; its bundle's or desktop file's says most.
std::string nameOfLost(const std::string& id)
{
    return id.substr(id.rfind('/') + 1);
}

SettingsList::Item applicationItem(const std::string& id, const SettingsFacts& facts)
{
    auto& applications = facts.applications;
    auto found = std::ranges::find(applications, id, &AppInfo::id);
    if (found == applications.end())
        return {id, nameOfLost(id), {}};
    return {id, found->name(), found->path().path};
}

// MARK: General

std::string loginItemHelp(const SettingsFacts& facts)
{
    return facts.loginItem == LoginItem::Status::requiresApproval
        ? tr("Waits for your approval under Login Items in System Settings.")
        : std::string{};
}

SettingsGroup dockGroup(const UserSettingsData& data)
{
    return {.id = "dock",
        .title = tr("Dock"),
        .help = {},
        .rows = {toggle("hideDock", tr("Hide the Dock"), data.hideDock,
                     tr("It stays away, even without Quorvel, until this is turned off.")),
            {SettingsRowID::restoreDock, tr("Bring the Dock back"),
                tr("If it is still hidden though it should not be."), true,
                SettingsButton{tr("Restore")}}}};
}

SettingsPage generalPage(const SettingsFacts& facts)
{
    auto& data = facts.data;
    SettingsGroup start{.id = "start",
        .title = {},
        .help = {},
        .rows
        = {toggle("runAtLogin", tr("Start at login"), data.runAtLogin, loginItemHelp(facts))}};
    SettingsGroup displays{.id = "displays",
        .title = tr("Displays"),
        .help = {},
        .rows = {toggle("showOnAllDisplays", tr("Show on all displays"), data.showOnAllDisplays,
            tr("Otherwise the bar is only on the main display."))}};
    SettingsGroup desktops{.id = "desktops",
        .title = tr("Desktops"),
        .help = {},
        .rows = {choice("scrollUpSpaceSwitch", tr("Scrolling up on the bar leads to"),
            data.scrollUpSpaceSwitch, kAllSpaceScrollUpBehaviors,
            std::array{tr("The desktop on the left"), tr("The desktop on the right")})}};
    SettingsPage page{"general", tr("General"), "preferences-system-symbolic",
        {std::move(start), std::move(displays)}};
    if (facts.hasDock)
        page.groups.push_back(dockGroup(data));
    page.groups.push_back(std::move(desktops));
    return page;
}

// MARK: Appearance

/// Each application with what its windows are known by.
SettingsGroup mendedMatchesGroup(const SettingsFacts& facts)
{
    SettingsList list{{}, /*isMovable=*/false, /*isRemovable=*/true};
    for (auto& [windows, application] : *facts.data.more.mendedMatches) {
        auto item = applicationItem(application, facts);
        list.items.push_back({windows, item.title + "  \u2013  " + windows, std::move(item.icon)});
    }
    auto title = tr("Applications that you chose for windows");
    return {.id = "mendedMatches",
        .title = title,
        .help = tr("Once it is removed here, windows belong to the application that is found for "
                   "them."),
        .rows = {{SettingsRowID::mendedMatches, title, {}, true, std::move(list)}}};
}

SettingsPage appearancePage(const SettingsFacts& facts)
{
    auto& data = facts.data;
    SettingsGroup bar{.id = "bar",
        .title = {},
        .help = {},
        .rows = {choice("barSize", tr("Size"), data.barSize, kAllBarSizes,
                     std::array{
                         tr("Small"), tr("Medium"), tr("Large"), tr("Extra Large"), tr("Largest")}),
            choice("theme", tr("Theme"), data.theme, kAllBarThemes,
                std::array{tr("Frosted"), tr("Longhorn"), tr("Aero")}),
            toggle("autoHide", tr("Hide automatically"), *data.more.withDefaults().autoHide,
                tr("The bar makes room for windows, and comes back when the pointer rests at the "
                   "edge of the screen."))}};
    auto names = toggle("showWindowNamesInChips", tr("Show window names"),
        data.showWindowNamesInChips, tr("Otherwise a title is the application's name."));
    names.isEnabled = data.showChipTitles;
    SettingsGroup windows{.id = "windows",
        .title = tr("Windows on the bar"),
        .help = {},
        .rows = {toggle("groupWindowsByApp", tr("Group windows by application"),
                     data.groupWindowsByApp, tr("All windows of an application share one place.")),
            toggle("showChipTitles", tr("Show titles"), data.showChipTitles), std::move(names),
            toggle("windowPreviews", tr("Show previews"), *data.more.withDefaults().windowPreviews,
                tr("Pictures of the windows, when the pointer rests on their place on the bar.")),
            toggle("markTitleNews", tr("Mark new titles"), *data.more.withDefaults().markTitleNews,
                tr("A dot shows that a window's title has changed since you were last there. "
                   "Numbers that count do not matter."))}};
    SettingsPage page{"appearance", tr("Appearance"), "preferences-desktop-appearance-symbolic",
        {std::move(bar), std::move(windows)}};
    if (data.more.mendedMatches && !data.more.mendedMatches->empty())
        page.groups.push_back(mendedMatchesGroup(facts));
    return page;
}

// MARK: Keyboard

SettingsGroup numberKeysGroup(const SettingsFacts& facts)
{
    const bool isOn = *facts.data.more.withDefaults().numberKeys;
    return {.id = "numberKeys",
        .title = tr("Number keys"),
        .help = {},
        .rows = {toggle("numberKeys", tr("Use what is on the bar by number"), isOn,
                     tr("The keys 1 to 9 click what is at that place; with Shift, they open a new "
                        "window of it.")),
            {"numberKeyModifiers", tr("Keys"), facts.keys->numberKeysTaken, isOn,
                facts.keys->numberKeyModifiers}}};
}

SettingsPage keyboardPage(const SettingsFacts& facts)
{
    SettingsGroup launcher{.id = "launcher",
        .title = {},
        .help = {},
        .rows = {{SettingsRowID::hotkey, tr("Open the list of applications"),
                     tr("Works in every application."), true, facts.keys->hotkey},
            {SettingsRowID::findHotkey, tr("Find a window"),
                tr("Opens the list of all open windows, to go to one by typing."), true,
                facts.keys->findHotkey},
            {SettingsRowID::barHotkey, tr("Hide or show the bar"),
                tr("On the display with the pointer, while the bar hides automatically."),
                *facts.data.more.withDefaults().autoHide, facts.keys->barHotkey}}};
    return {"keyboard", tr("Keyboard"), "input-keyboard-symbolic",
        {std::move(launcher), numberKeysGroup(facts)}};
}

// MARK: Pins

SettingsRow pinList(
    const char* id, std::string title, PinDestination place, const SettingsFacts& facts)
{
    SettingsList list{{}, /*isMovable=*/true, /*isRemovable=*/true};
    for (auto& record : facts.data.pinnedApps) {
        if (record.isPinned(place))
            list.items.push_back(applicationItem(record.id, facts));
    }
    auto help = list.items.empty() ? tr("Nothing is pinned here.") : std::string{};
    return {id, std::move(title), std::move(help), true, std::move(list)};
}

SettingsPage pinsPage(const SettingsFacts& facts)
{
    SettingsGroup bar{.id = "bar",
        .title = tr("On the bar"),
        .help
        = tr("Applications are pinned from the menu of their windows on the bar, or in the list "
             "of applications."),
        .rows
        = {pinList(SettingsRowID::pinsOnBar, tr("Pinned to the bar"), PinDestination::bar, facts)}};
    SettingsGroup launcher{.id = "launcher",
        .title = tr("In the list of applications"),
        .help = {},
        .rows = {pinList(SettingsRowID::pinsInLauncher, tr("Pinned to the list of applications"),
            PinDestination::launcher, facts)}};
    return {"pins", tr("Pins"), "view-pin-symbolic", {std::move(bar), std::move(launcher)}};
}

// MARK: About

std::string fileAddress(const std::string& path)
{
    std::string address = "file://";
    for (unsigned char character : path) {
        bool isPlain = std::isalnum(character)
            || std::string_view{"/-._~"}.find(static_cast<char>(character))
                != std::string_view::npos;
        if (isPlain)
            address.push_back(static_cast<char>(character));
        else
            address += fmt::format("%{:02X}", character);
    }
    return address;
}

SettingsRow fileRow(const SettingsFacts& facts)
{
    // Before the first change there is only the folder.
    auto shown = facts.fileState == FileState::written
        ? facts.file
        : facts.file.substr(0, facts.file.rfind('/'));
    auto help = facts.fileState == FileState::failing
        ? tr("It cannot be written: changes last until Quorvel ends.")
        : facts.file;
    return {SettingsRowID::settingsFile, tr("Settings file"), std::move(help), true,
        SettingsLink{tr("Show"), fileAddress(shown)}};
}

SettingsRow resetRow(const SettingsFacts& facts)
{
    auto reset = facts.afterReset();
    reset.more = reset.more.withDefaults();
    return {SettingsRowID::reset, tr("Reset all settings"),
        tr("The keyboard shortcut and starting at login too; pinned applications stay."),
        facts.data != reset, SettingsButton{tr("Reset")}};
}

SettingsPage aboutPage(const SettingsFacts& facts)
{
    SettingsGroup program{.id = "program",
        .title = {},
        .help = {},
        .rows = {{SettingsRowID::version, tr("Version"), {}, true, SettingsText{kVersion}}}};
    if (facts.canCheckForUpdates)
        program.rows.push_back({SettingsRowID::checkForUpdates, tr("Updates"), {},
            *facts.canCheckForUpdates, SettingsButton{tr("Check for Updates\u2026")}});
    SettingsGroup storage{.id = "storage", .title = {}, .help = {}, .rows = {}};
    if (facts.fileState == FileState::noPlace)
        storage.help
            = tr("There is no place to save the settings: changes last until Quorvel ends.");
    else
        storage.rows.push_back(fileRow(facts));
    storage.rows.push_back(resetRow(facts));
    return {"about", tr("About"), "help-about-symbolic", {std::move(program), std::move(storage)}};
}

}

UserSettingsData SettingsFacts::afterReset() const
{
    auto reset = defaults;
    reset.pinnedApps = data.pinnedApps;
    reset.settingsVersion = data.settingsVersion;
    return reset;
}

SettingsDescription describeSettings(const SettingsFacts& facts)
{
    SettingsDescription description{kVersion, {generalPage(facts), appearancePage(facts)}};
    if (facts.keys)
        description.pages.push_back(keyboardPage(facts));
    description.pages.push_back(pinsPage(facts));
    description.pages.push_back(aboutPage(facts));
    return description;
}

}
