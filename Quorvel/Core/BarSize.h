#pragma once

#include <array>
#include <optional>
#include <string_view>

namespace quorvel {

enum class BarSize { small, medium, large, xl, xxl };

inline constexpr std::array<BarSize, 5> kAllBarSizes{
    BarSize::small, BarSize::medium, BarSize::large, BarSize::xl, BarSize::xxl};

std::string_view rawValue(BarSize);
std::optional<BarSize> barSizeFrom(std::string_view text);

/// The height of the panel and of the strip of screen it occupies, in points.
double barHeight(BarSize);

/// Every dimension that the bar's views use, in points.
struct BarMetrics {
    BarSize barSize{};
    double chipHeight = 0;
    double chipCornerRadius = 0;
    double chipHorizontalPadding = 0;
    double chipSpacing = 0;
    double iconSize = 0;
    double iconTextSpacing = 0;
    double titleMaxWidth = 0;
    double menuButtonWidth = 0;
    double menuButtonHeight = 0;
    double menuIconSize = 0;
    double cornerRadius = 0;
    double scrollHorizontalPadding = 0;
    double barHorizontalPadding = 0;

    static BarMetrics of(BarSize);

    friend bool operator==(const BarMetrics&, const BarMetrics&) = default;
};

}
