#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "Quorvel/Platform/SettingsDescription.h"

namespace quorvel {

// What the bar and a settings window in another process tell each other: JSON objects without a
// line break. Texts that are empty are left out. What makes no sense decodes as absent; members
// that this version does not know are ignored.

/// The window is to come to the front.
struct SettingsPresent {
    friend bool operator==(const SettingsPresent&, const SettingsPresent&) = default;
};

/// From the bar to the window.
using SettingsNews = std::variant<SettingsDescription, SettingsPresent, SettingsRefusal>;

std::string encodeSettingsNews(const SettingsNews&);
std::optional<SettingsNews> decodeSettingsNews(std::string_view line);

/// A combination of keys is recorded from now on, or no longer.
struct SettingsRecording {
    bool isOn = false;

    friend bool operator==(const SettingsRecording&, const SettingsRecording&) = default;
};

/// The window wants to be told everything again; from the answer it sees that the bar is alive, and
/// from the question the bar that the window is.
struct SettingsQuestion {
    friend bool operator==(const SettingsQuestion&, const SettingsQuestion&) = default;
};

/// From the window to the bar. Changes and questions are answered, if only with a description.
using SettingsRequest = std::variant<SettingsChange, SettingsRecording, SettingsQuestion>;

std::string encodeSettingsRequest(const SettingsRequest&);
std::optional<SettingsRequest> decodeSettingsRequest(std::string_view line);

}
