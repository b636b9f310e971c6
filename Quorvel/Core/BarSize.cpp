#include "Quorvel/Core/BarSize.h"

namespace quorvel {

namespace {

// clang-format off
constexpr BarMetrics kMetrics[] = {
    // size         chip        padding,     icon, text,  title  menu button     icon  radius, scroll,
    //              h, radius   spacing      spacing      width  w, h                  padding
    {BarSize::small,  23, 6,    8, 4,        16, 4,       120,   24, 18,         10,   4, 8, 8},
    {BarSize::medium, 27, 7,    9, 5,        18, 5,       135,   29, 22,         12,   5, 10, 9},
    {BarSize::large,  32, 8,    10, 6,       20, 6,       150,   36, 27,         15,   6, 12, 10},
    {BarSize::xl,     40, 10,   12, 7,       24, 7,       180,   44, 34,         18,   7, 14, 12},
    {BarSize::xxl,    50, 12,   14, 8,       30, 8,       220,   54, 42,         23,   8, 16, 14},
};
// clang-format on

constexpr double kBarHeights[] = {30, 36, 44, 54, 66};

}

std::string_view rawValue(BarSize size)
{
    constexpr std::string_view texts[] = {"small", "medium", "large", "xl", "xxl"};
    return texts[static_cast<std::size_t>(size)];
}

std::optional<BarSize> barSizeFrom(std::string_view text)
{
    for (auto size : kAllBarSizes) {
        if (rawValue(size) == text)
            return size;
    }
    return {};
}

double barHeight(BarSize size)
{
    return kBarHeights[static_cast<std::size_t>(size)];
}

BarMetrics BarMetrics::of(BarSize size)
{
    return kMetrics[static_cast<std::size_t>(size)];
}

}
