#pragma once

#include <array>
#include <optional>
#include <string_view>

namespace quorvel {

/// To which neighbour of the space a scroll upwards on the bar leads.
enum class SpaceScrollUpBehavior { left, right };

inline constexpr std::array<SpaceScrollUpBehavior, 2> kAllSpaceScrollUpBehaviors{
    SpaceScrollUpBehavior::left, SpaceScrollUpBehavior::right};

std::string_view rawValue(SpaceScrollUpBehavior);
std::optional<SpaceScrollUpBehavior> spaceScrollUpBehaviorFrom(std::string_view text);

}
