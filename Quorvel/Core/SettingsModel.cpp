#include "Quorvel/Core/SettingsModel.h"

#include <algorithm>
#include <type_traits>
#include <utility>

#include "Quorvel/Core/AppLauncher.h"
#include "Quorvel/Core/DockController.h"
#include "Quorvel/Core/HotkeyManager.h"
#include "Quorvel/Core/NumberKeys.h"
#include "Quorvel/Core/PinStore.h"
#include "Quorvel/Core/SettingsPages.h"
#include "Quorvel/Core/SettingsShortcuts.h"
#include "Quorvel/Core/UpdaterService.h"
#include "Quorvel/Core/UserSettings.h"
#include "Quorvel/Platform/Translation.h"

namespace quorvel {

namespace {

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

/// Where the setting is a value of this type, chosen or not.
template <typename Field, typename Value>
constexpr bool kHolds = std::is_same_v<Field, Value> || std::is_same_v<Field, std::optional<Value>>;

/// The rows of stored settings bear the names of their fields.
void setField(UserSettingsData& data, const std::string& row, const SettingsChange::Value& value)
{
    UserSettingsData::forEachSetting(data, [&](std::string_view name, auto& field) {
        using Field = std::remove_cvref_t<decltype(field)>;
        if (name != row)
            return;
        if constexpr (kHolds<Field, bool>)
            field = std::get<bool>(value);
        else if constexpr (kHolds<Field, std::string>)
            field = std::get<std::string>(value);
    });
}

/// Absent where the program is updated by other means.
std::optional<bool> canCheckForUpdates(const UpdaterService* updater)
{
    return updater ? std::optional{updater->canCheckForUpdates.value()} : std::nullopt;
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
    return std::visit([](auto& what) -> std::string { return what.row; }, change.what);
}

}

SettingsModel::SettingsModel(const SettingsSubjects& subjects)
    : m_subjects(subjects)
    , m_shortcuts{{SettingsRowID::hotkey, &subjects.hotkeyManager},
          {SettingsRowID::findHotkey, &subjects.findHotkeyManager},
          {SettingsRowID::barHotkey, &subjects.barHotkeyManager}}
{
    auto follow = [this](auto& source) {
        m_sources.push_back(source.subscribe([this](auto&) { refresh(); }));
    };
    for (auto& [row, manager] : m_shortcuts) {
        follow(manager->currentShortcut());
        follow(manager->state());
        auto& recorder = m_recorders.try_emplace(row, *manager).first->second;
        m_sources.push_back(recorder.isRecording().subscribe([this, row](bool isRecording) {
            if (isRecording || m_recordingRow.value() == row)
                m_recordingRow.set(isRecording ? row : "");
        }));
    }
    follow(subjects.settings.data());
    follow(subjects.settings.fileState());
    follow(subjects.appLauncher.allApps());
    follow(subjects.numberKeys.taken());
    if (subjects.updaterService)
        follow(subjects.updaterService->canCheckForUpdates);
    refresh();
}

SettingsFacts SettingsModel::facts() const
{
    auto data = m_subjects.settings.dataThatHolds();
    return {.data = std::move(data),
        .defaults = m_subjects.settings.defaults(),
        .applications = m_subjects.appLauncher.allApps().value(),
        .loginItem = m_subjects.loginItem.status(),
        .keys = keys(),
        .hasDock = m_subjects.dockController != nullptr,
        .canCheckForUpdates = canCheckForUpdates(m_subjects.updaterService),
        .file = m_subjects.settings.fileURL(),
        .fileState = m_subjects.settings.fileState().value()};
}

std::optional<SettingsFacts::Keys> SettingsModel::keys() const
{
    if (!m_subjects.hotkeys)
        return std::nullopt;
    auto& hotkeys = *m_subjects.hotkeys;
    return SettingsFacts::Keys{describeHotkey(m_subjects.hotkeyManager),
        describeHotkey(m_subjects.findHotkeyManager), describeHotkey(m_subjects.barHotkeyManager),
        describeNumberKeyModifiers(hotkeys, m_subjects.settings.numberKeyModifiers()),
        describeTakenNumberKeys(hotkeys, m_subjects.numberKeys)};
}

void SettingsModel::refresh()
{
    m_description.set(describeSettings(facts()));
    auto* recording = m_description.value().row(m_recordingRow.value());
    if (recording && !recording->isEnabled)
        setRecordingRow({});
}

void SettingsModel::lookAgain()
{
    if (m_subjects.hotkeys)
        m_subjects.hotkeys->askAgain();
    refresh();
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
    if (set.row == "numberKeyModifiers") {
        auto& text = std::get<std::string>(set.value);
        auto modifiers = numberKeyModifiersOf(text);
        if (!modifiers && !text.empty())
            return tr("This value is not possible.");
        m_subjects.settings.setNumberKeyModifiers(modifiers);
        return {};
    }
    auto data = m_subjects.settings.data().value();
    setField(data, set.row, set.value);
    m_subjects.settings.setData(std::move(data));
    return {};
}

std::string SettingsModel::setRunAtLogin(bool isWanted)
{
    m_subjects.settings.setRunAtLogin(isWanted);
    refresh(); // its status may be another one though it is off
    if (m_subjects.settings.runAtLogin() == isWanted)
        return {};
    if (isWanted && m_subjects.loginItem.status() == LoginItem::Status::requiresApproval)
        return tr("Allow Quorvel under Login Items in System Settings.");
    return isWanted ? tr("The system refuses to start Quorvel at login.")
                    : tr("The system goes on starting Quorvel at login.");
}

std::string SettingsModel::perform(const SettingsChange::Press& press)
{
    if (press.row == SettingsRowID::reset)
        return reset();
    if (press.row == SettingsRowID::checkForUpdates)
        m_subjects.updaterService->checkForUpdates();
    else if (press.row == SettingsRowID::restoreDock)
        restoreDock();
    else
        return noSuchRow();
    return {};
}

std::string SettingsModel::reset()
{
    auto data = facts().afterReset();
    bool isWanted = std::exchange(data.runAtLogin, m_subjects.settings.runAtLogin());
    m_subjects.settings.setData(std::move(data));
    return setRunAtLogin(isWanted);
}

void SettingsModel::restoreDock()
{
    m_subjects.settings.setHideDock(false);
    // Where the setting was off, a Dock that is hidden was left so by an earlier run.
    m_subjects.dockController->restore(/*synchronous=*/false);
}

std::string SettingsModel::perform(const SettingsChange::Move& move)
{
    auto place = placeOf(move.row);
    if (!place)
        return noSuchRow();
    auto others = m_subjects.pinStore.pinnedAppIDs(*place);
    std::erase(others, move.item);
    m_subjects.pinStore.movePinnedApp(
        move.item, move.to < others.size() ? std::optional{others[move.to]} : std::nullopt, *place);
    return {};
}

std::string SettingsModel::perform(const SettingsChange::Remove& remove)
{
    if (remove.row == SettingsRowID::mendedMatches) {
        auto mended = m_subjects.settings.mendedMatches();
        mended.erase(remove.item);
        m_subjects.settings.setMendedMatches(std::move(mended));
        return {};
    }
    auto place = placeOf(remove.row);
    if (!place)
        return noSuchRow();
    m_subjects.pinStore.setPin(remove.item, *place, false);
    return {};
}

std::string SettingsModel::perform(const SettingsChange::Record& record)
{
    std::optional<KeyboardShortcut> shortcut;
    auto manager = m_shortcuts.find(record.row);
    if (manager == m_shortcuts.end())
        return noSuchRow();
    if (record.keys) {
        shortcut = {record.keys->keyCode & 0xFFFF, record.keys->modifiers & HotkeyModifier::all};
        if (shortcut->modifiers == 0)
            return tr("A shortcut needs a modifier key.");
        if (!isKeyOfShortcut(shortcut->keyCode))
            return tr("This key cannot be part of a shortcut.");
    }
    manager->second->setCurrentShortcut(shortcut);
    return {};
}

void SettingsModel::setRecordingRow(const std::string& row)
{
    for (auto& [other, recorder] : m_recorders) {
        if (other != row)
            recorder.stop();
    }
    if (auto found = m_recorders.find(row); found != m_recorders.end())
        found->second.start();
}

bool SettingsModel::keyPressed(std::uint32_t keyCode, std::uint64_t modifierFlags)
{
    auto recording = m_recorders.find(m_recordingRow.value());
    return recording != m_recorders.end() && recording->second.keyPressed(keyCode, modifierFlags);
}

Subscription SettingsModel::holdShortcuts()
{
    return m_subjects.hotkeyManager.suspend();
}

}
