#pragma once

#include <optional>
#include <vector>

#include "Quorvel/Core/AppInfo.h"
#include "Quorvel/Core/UserSettings.h"
#include "Quorvel/Platform/LoginItem.h"
#include "Quorvel/Platform/SettingsDescription.h"

namespace quorvel {

/// The ids of the rows that are not fields of the record, or no simple ones.
namespace SettingsRowID {
inline constexpr const char* hotkey = "hotkey"; ///< made of two fields
inline constexpr const char* findHotkey = "findHotkey"; ///< made of two fields
inline constexpr const char* barHotkey = "barHotkey"; ///< made of two fields
inline constexpr const char* pinsOnBar = "pinsOnBar";
inline constexpr const char* pinsInLauncher = "pinsInLauncher";
inline constexpr const char* mendedMatches = "mendedMatches";
inline constexpr const char* restoreDock = "restoreDock";
inline constexpr const char* version = "version";
inline constexpr const char* checkForUpdates = "checkForUpdates";
inline constexpr const char* settingsFile = "settingsFile";
inline constexpr const char* reset = "reset";
}

/// Everything that the settings window describes, as it is now.
struct SettingsFacts {
    struct Keys {
        SettingsShortcut hotkey;
        SettingsShortcut findHotkey;
        SettingsShortcut barHotkey;
        SettingsChoice numberKeyModifiers;
        std::string numberKeysTaken; ///< which of them do not work; empty: all do
    };

    UserSettingsData data; ///< with the values in effect
    UserSettingsData defaults;
    const std::vector<AppInfo>& applications; ///< for the names of pins
    LoginItem::Status loginItem{};
    std::optional<Keys> keys; ///< absent: the system has no shortcuts for all programs
    bool hasDock = false;
    std::optional<bool> canCheckForUpdates; ///< absent: the program is updated by other means
    std::string file; ///< empty: there is no place for it
    UserSettings::FileState fileState{};

    /// The record after "Reset". The pins, which are the user's own work, stay.
    UserSettingsData afterReset() const;
};

SettingsDescription describeSettings(const SettingsFacts&);

}
