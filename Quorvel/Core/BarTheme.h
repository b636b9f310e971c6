#pragma once

#include <array>
#include <optional>
#include <string_view>

namespace quorvel {

enum class BarTheme { frosted, longhorn, aero };

inline constexpr std::array<BarTheme, 3> kAllBarThemes{
    BarTheme::frosted, BarTheme::longhorn, BarTheme::aero};

std::string_view rawValue(BarTheme);
std::optional<BarTheme> barThemeFrom(std::string_view text);

/// The theme that matches the system's own appearance.
BarTheme defaultBarTheme(std::optional<int> systemMajorVersion);

}
