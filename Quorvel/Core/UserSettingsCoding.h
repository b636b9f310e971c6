#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "Quorvel/Core/UserSettingsData.h"

namespace quorvel {

/// The record as it is stored: indented JSON with its keys in alphabetical order.
std::string encodeUserSettings(const UserSettingsData&);

/// A key that is missing or null keeps its default. Absent if the bytes are not a JSON object or
/// one of the keys has a value of another type: JSON's types, so that a boolean is not a number.
std::optional<UserSettingsData> decodeUserSettings(
    std::string_view bytes, const UserSettingsData& defaults);

/// The file's content with the fields that differ between `before` and `now` updated, and required
/// fields that are missing added; all other fields, known or not, are kept. Absent where
/// `decodeUserSettings` would be.
std::optional<std::string> reviseUserSettings(
    std::string_view file, const UserSettingsData& before, const UserSettingsData& now);

/// All settings by their names alone, as indented JSON; "null" for an absent value.
std::string listUserSettings(const UserSettingsData&);

/// One setting as JSON, "null" for an absent value; absent if there is no such setting.
std::optional<std::string> encodeUserSetting(const UserSettingsData&, std::string_view name);

/// Sets one setting from JSON, or from bare text that is not JSON; "null" clears an optional one.
/// False, and nothing is set, if there is no such setting or it has another type.
bool decodeUserSetting(UserSettingsData&, std::string_view name, std::string_view value);

}
