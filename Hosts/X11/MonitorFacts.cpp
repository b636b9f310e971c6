#include "Hosts/X11/MonitorFacts.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include <fmt/format.h>

namespace quorvel::xdg::x11 {

namespace {

constexpr double kDotsPerInchAtScale1 = 96;

/// The value of "Xft.dpi:" in the display's resources.
std::optional<double> dotsPerInch(std::string_view resources)
{
    constexpr std::string_view key = "Xft.dpi:";
    while (!resources.empty()) {
        auto line = resources.substr(0, resources.find('\n'));
        resources.remove_prefix(std::min(resources.size(), line.size() + 1));
        if (!line.starts_with(key))
            continue;
        line.remove_prefix(key.size());
        line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
        double value = 0;
        auto end = std::from_chars(line.data(), line.data() + line.size(), value);
        if (end.ec == std::errc{} && std::isfinite(value)) // "nan" and "inf" are read too
            return value;
    }
    return std::nullopt;
}

}

double scaleFromResources(std::string_view resources)
{
    auto dots = dotsPerInch(resources);
    return dots ? std::clamp(*dots / kDotsPerInchAtScale1, 1.0, kLargestScale) : 1;
}

std::optional<std::string> identifierFromEdid(std::span<const std::uint8_t> edid)
{
    constexpr std::uint8_t header[] = {0, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0};
    if (edid.size() < kEdidBlock || !std::ranges::equal(edid.first(8), header))
        return std::nullopt;
    std::string text = "EDID-";
    for (auto byte : edid.subspan(8, 10))
        text += fmt::format("{:02X}", byte);
    return text;
}

}
