#include "Quorvel/Core/SettingsModel.h"

#include <algorithm>
#include <type_traits>
#include <utility>

#include "Quorvel/Core/AppLauncher.h"
#include "Quorvel/Core/PinStore.h"
#include "Quorvel/Core/SettingsPages.h"
#include "Quorvel/Core/UserSettings.h"
#include "Quorvel/Platform/Translation.h"

namespace quorvel {

namespace {

/// Carbon's masks: command, shift, option, control.
constexpr std::uint32_t kModifiers = 0x100 | 0x200 | 0x800 | 0x1000;

std::string noSuchRow()
{
    return tr("The running bar has no such setting.");
}

/// Whether it is one of the values that the control offers.
bool canBe(const SettingsControl& control, const SettingsChange::Value& value)
{
    if (std::holds_alternative<SettingsToggle>(control))
        return std::holds_alternative<bool>(value);
    auto* choice = std::get_if<SettingsChoice>(&control);
    auto* text = std::get_if<std::string>(&value);
    return choice && text
        && std::ranges::find(choice->options, *text, &SettingsChoice::Option::value)
        != choice->options.end();
}

/// The rows of stored settings bear the names of their fields.
void setField(UserSettingsData& data, const std::string& row, const SettingsChange::Value& value)
{
    UserSettingsData::forEachField(data, [&](std::string_view name, auto& field) {
        using Field = std::remove_cvref_t<decltype(field)>;
        if constexpr (std::is_same_v<Field, bool> || std::is_same_v<Field, std::string>) {
            if (name == row)
                field = std::get<Field>(value);
        }
    });
}

std::optional<PinDestination> placeOf(const std::string& row)
{
    if (row == SettingsRowID::pinsOnBar)
        return PinDestination::bar;
    if (row == SettingsRowID::pinsInLauncher)
        return PinDestination::launcher;
    return std::nullopt;
}

std::string rowOf(const SettingsChange& change)
{
    return std::visit(
        [](auto& what) -> std::string {
            if constexpr (std::is_same_v<std::remove_cvref_t<decltype(what)>,
                              SettingsChange::Record>)
                return SettingsRowID::hotkey;
            else
                return what.row;
        },
        change.what);
}

}

SettingsModel::SettingsModel(UserSettings& settings, PinStore& pinStore,
    const AppLauncher& appLauncher, const LoginItem& loginItem)
    : m_settings(settings)
    , m_pinStore(pinStore)
    , m_appLauncher(appLauncher)
    , m_loginItem(loginItem)
{
    auto follow = [this](auto& source) {
        m_sources.push_back(source.subscribe([this](auto&) { refresh(); }));
    };
    follow(settings.data());
    follow(settings.fileState());
    follow(appLauncher.allApps());
    refresh();
}

SettingsFacts SettingsModel::facts() const
{
    auto data = m_settings.dataThatHolds();
    SettingsShortcut hotkey;
    if (data.hotkeyKeyCode && data.hotkeyModifiers)
        hotkey.value = {*data.hotkeyKeyCode, *data.hotkeyModifiers};
    hotkey.recordHelp = tr("Press a key combination with modifiers. Press Esc to cancel.");
    return {.data = std::move(data),
        .defaults = m_settings.defaults(),
        .applications = m_appLauncher.allApps().value(),
        .loginItem = m_loginItem.status(),
        .hotkey = std::move(hotkey),
        .file = m_settings.fileURL(),
        .fileState = m_settings.fileState().value()};
}

void SettingsModel::refresh()
{
    m_description.set(describeSettings(facts()));
}

// MARK: Changes

std::optional<SettingsRefusal> SettingsModel::apply(const SettingsChange& change)
{
    auto row = rowOf(change);
    auto* described = m_description.value().row(row);
    std::string reason;
    if (!described)
        reason = noSuchRow();
    else if (!described->isEnabled)
        reason = tr("This cannot be changed at present.");
    else
        reason = std::visit([this](auto& what) { return perform(what); }, change.what);
    if (reason.empty())
        return std::nullopt;
    return SettingsRefusal{std::move(row), std::move(reason)};
}

std::string SettingsModel::perform(const SettingsChange::Set& set)
{
    if (!canBe(m_description.value().row(set.row)->control, set.value))
        return tr("This value is not possible.");
    if (set.row == "runAtLogin")
        return setRunAtLogin(std::get<bool>(set.value));
    auto data = m_settings.data().value();
    setField(data, set.row, set.value);
    m_settings.setData(std::move(data));
    return {};
}

std::string SettingsModel::setRunAtLogin(bool isWanted)
{
    m_settings.setRunAtLogin(isWanted);
    refresh(); // its status may be another one though it is off
    if (m_settings.runAtLogin() == isWanted)
        return {};
    if (isWanted && m_loginItem.status() == LoginItem::Status::requiresApproval)
        return tr("Allow Quorvel under Login Items in System Settings.");
    return isWanted ? tr("The system refuses to start Quorvel at login.")
                    : tr("The system goes on starting Quorvel at login.");
}

std::string SettingsModel::perform(const SettingsChange::Press& press)
{
    return press.row == SettingsRowID::reset ? reset() : noSuchRow();
}

std::string SettingsModel::reset()
{
    auto data = facts().afterReset();
    bool isWanted = std::exchange(data.runAtLogin, m_settings.runAtLogin());
    m_settings.setData(std::move(data));
    return setRunAtLogin(isWanted);
}

std::string SettingsModel::perform(const SettingsChange::Move& move)
{
    auto place = placeOf(move.row);
    if (!place)
        return noSuchRow();
    auto others = m_pinStore.pinnedAppIDs(*place);
    std::erase(others, move.item);
    m_pinStore.movePinnedApp(
        move.item, move.to < others.size() ? std::optional{others[move.to]} : std::nullopt, *place);
    return {};
}

std::string SettingsModel::perform(const SettingsChange::Remove& remove)
{
    auto place = placeOf(remove.row);
    if (!place)
        return noSuchRow();
    m_pinStore.setPin(remove.item, *place, false);
    return {};
}

std::string SettingsModel::perform(const SettingsChange::Record& record)
{
    if (record.keys && (record.keys->modifiers & kModifiers) == 0)
        return tr("A shortcut needs a modifier key.");
    auto data = m_settings.data().value();
    data.hotkeyKeyCode = record.keys ? std::optional{record.keys->keyCode} : std::nullopt;
    data.hotkeyModifiers = record.keys ? std::optional{record.keys->modifiers} : std::nullopt;
    m_settings.setData(std::move(data));
    return {};
}

Subscription SettingsModel::holdShortcuts()
{
    return {};
}

}
