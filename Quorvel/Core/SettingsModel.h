#pragma once

#include <optional>
#include <vector>

#include "Quorvel/Core/UserSettingsData.h"
#include "Quorvel/Platform/SettingsWindow.h"

namespace quorvel {

class AppLauncher;
class LoginItem;
class PinStore;
class UserSettings;
struct SettingsFacts;

/// What the settings window shows, kept in step with everything it tells of, and what its changes
/// do. Main thread.
class SettingsModel final : public SettingsSource {
public:
    /// All it is given outlives it.
    SettingsModel(UserSettings&, PinStore&, const AppLauncher&, const LoginItem&);
    SettingsModel(const SettingsModel&) = delete;
    SettingsModel& operator=(const SettingsModel&) = delete;

    const Published<SettingsDescription>& description() const override { return m_description; }
    std::optional<SettingsRefusal> apply(const SettingsChange&) override;
    Subscription holdShortcuts() override;
    /// Looks at what changes without anybody's telling, such as the login item.
    void refresh();

private:
    SettingsFacts facts() const;
    /// The reason if it is refused; empty if it holds.
    std::string perform(const SettingsChange::Set&);
    std::string perform(const SettingsChange::Press&);
    std::string perform(const SettingsChange::Move&);
    std::string perform(const SettingsChange::Remove&);
    std::string perform(const SettingsChange::Record&);
    std::string setRunAtLogin(bool isWanted);
    std::string reset();

    UserSettings& m_settings;
    PinStore& m_pinStore;
    const AppLauncher& m_appLauncher;
    const LoginItem& m_loginItem;
    Published<SettingsDescription> m_description;
    std::vector<Subscription> m_sources;
};

}
