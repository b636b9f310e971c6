#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace quorvel::xdg::x11 {

inline constexpr std::size_t kEdidBlock = 128; ///< bytes, the first of a monitor's identification
inline constexpr double kLargestScale = 2; ///< pixels a point

/// Pixels a point, by the entry "Xft.dpi:" among the display's resources; 1 without one that makes
/// sense. Accepts any bytes.
double scaleFromResources(std::string_view);

/// Maker, model, serial number, week and year of a monitor, which stay when it is plugged in
/// elsewhere. Absent without a whole first block. Accepts any bytes.
std::optional<std::string> identifierFromEdid(std::span<const std::uint8_t>);

}
