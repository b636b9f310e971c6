#pragma once

#include <optional>
#include <string>
#include <vector>

#include "Quorvel/Platform/Displays.h"

namespace quorvel::test {

/// One screen of the usual scale, where a test needs to know no more of them.
struct OneDisplay final : Displays {
    std::vector<Screen> screens() const override { return {Screen{}}; }
    DisplayNumber mainDisplay() const override { return {}; }
    std::vector<DisplayNumber> activeDisplays(std::size_t) const override { return {}; }
    std::optional<std::string> identifier(DisplayNumber) const override { return {}; }
    Point pointerLocation() const override { return {}; }
    std::optional<DisplayNumber> displayAt(Point) const override { return {}; }
};

}
