#include "Quorvel/Core/SpaceScrollUpBehavior.h"

namespace quorvel {

std::string_view rawValue(SpaceScrollUpBehavior behavior)
{
    return behavior == SpaceScrollUpBehavior::left ? "left" : "right";
}

std::optional<SpaceScrollUpBehavior> spaceScrollUpBehaviorFrom(std::string_view text)
{
    for (auto behavior : kAllSpaceScrollUpBehaviors) {
        if (rawValue(behavior) == text)
            return behavior;
    }
    return {};
}

}
