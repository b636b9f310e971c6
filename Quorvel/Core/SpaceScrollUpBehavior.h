#pragma once

#include <array>
#include <optional>
#include <string_view>

namespace quorvel {

/// Which neighbouring space a scroll upwards on the bar leads to.
enum class SpaceScrollUpBehavior { left, right };

inline constexpr std::array<SpaceScrollUpBehavior, 2> kAllSpaceScrollUpBehaviors{
    SpaceScrollUpBehavior::left, SpaceScrollUpBehavior::right};

std::string_view rawValue(SpaceScrollUpBehavior);
std::optional<SpaceScrollUpBehavior> spaceScrollUpBehaviorFrom(std::string_view text);

}
