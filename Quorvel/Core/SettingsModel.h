#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "Quorvel/Core/SettingsPages.h"
#include "Quorvel/Core/ShortcutRecorder.h"
#include "Quorvel/Core/UserSettingsData.h"
#include "Quorvel/Platform/SettingsWindow.h"

namespace quorvel {

class AppLauncher;
class DockController;
class HotkeyManager;
class Hotkeys;
class LoginItem;
class NumberKeys;
class PinStore;
class UpdaterService;
class UserSettings;

/// The objects whose state the settings window shows and changes. Settings of one that is null are
/// not offered.
struct SettingsSubjects {
    UserSettings& settings;
    PinStore& pinStore;
    const AppLauncher& appLauncher;
    const LoginItem& loginItem;
    HotkeyManager& hotkeyManager;
    HotkeyManager& findHotkeyManager;
    HotkeyManager& barHotkeyManager;
    const NumberKeys& numberKeys;
    Hotkeys* hotkeys = nullptr;
    DockController* dockController = nullptr;
    UpdaterService* updaterService = nullptr;
};

/// What the settings window shows, kept in step with everything it describes, and what its changes
/// do. Main thread.
class SettingsModel final : public SettingsSource {
public:
    /// The subjects outlive it.
    explicit SettingsModel(const SettingsSubjects&);
    SettingsModel(const SettingsModel&) = delete;
    SettingsModel& operator=(const SettingsModel&) = delete;

    const Published<SettingsDescription>& description() const override { return m_description; }
    std::optional<SettingsRefusal> apply(const SettingsChange&) override;
    const Published<std::string>& recordingRow() const override { return m_recordingRow; }
    void setRecordingRow(const std::string&) override;
    bool keyPressed(std::uint32_t keyCode, std::uint64_t modifierFlags) override;
    /// While the returned token is kept, the program's own shortcuts do not act, so that another
    /// process can record them.
    [[nodiscard]] Subscription holdShortcuts();
    /// Reads anew what changes without notice, such as the login item.
    void refresh();
    /// The same for someone who begins to look; shortcuts that are taken may be free by now.
    void lookAgain();

private:
    SettingsFacts facts() const;
    std::optional<SettingsFacts::Keys> keys() const;
    /// The reason if it is refused; empty if it is applied.
    std::string perform(const SettingsChange::Set&);
    std::string perform(const SettingsChange::Press&);
    std::string perform(const SettingsChange::Move&);
    std::string perform(const SettingsChange::Remove&);
    std::string perform(const SettingsChange::Record&);
    std::string setRunAtLogin(bool isWanted);
    std::string reset();
    void restoreDock();

    const SettingsSubjects m_subjects;
    const std::map<std::string, HotkeyManager*> m_shortcuts; ///< by row
    Published<SettingsDescription> m_description;
    std::map<std::string, ShortcutRecorder> m_recorders; ///< by row
    Published<std::string> m_recordingRow;
    std::vector<Subscription> m_sources;
};

}
