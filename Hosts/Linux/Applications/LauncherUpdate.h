#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include <glib.h>

namespace quorvel::xdg {

/// What an application wants its launchers to show. Anything it does not mention, or that makes no
/// sense, is absent.
struct LauncherUpdate {
    static constexpr std::size_t kLongestID = 256;
    static constexpr std::size_t kMostProperties = 64;

    std::string desktopID; ///< without ".desktop"
    std::optional<std::int64_t> count = {};
    std::optional<bool> isCountVisible = {};
    std::optional<double> progress = {}; ///< finite
    std::optional<bool> isProgressVisible = {};
    std::optional<bool> isUrgent = {};

    friend bool operator==(const LauncherUpdate&, const LauncherUpdate&) = default;
};

/// Absent if the signal has another type, or names no application.
std::optional<LauncherUpdate> decodeLauncherUpdate(GVariant* parameters);

/// The desktop file's id in a launcher's address, such as "application://org.example.Mail.desktop".
/// Some applications write a path there.
std::optional<std::string> desktopIDOf(std::string_view address);

}
