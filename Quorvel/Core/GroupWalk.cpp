#include "Quorvel/Core/GroupWalk.h"

#include <algorithm>

namespace quorvel {

bool GroupWalk::isVisited(WindowID id) const
{
    return std::ranges::find(m_visited, id) != m_visited.end();
}

WindowID GroupWalk::next(SpaceID space, const std::string& groupID,
    const std::vector<const ChipData*>& chips, WindowID focused)
{
    std::pair group{space, groupID};
    bool goesOn = group == m_group && !m_visited.empty() && m_visited.back() == focused;
    bool isRoundDone
        = std::ranges::all_of(chips, [this](auto* chip) { return isVisited(chip->id); });
    if (!goesOn || isRoundDone)
        m_visited = {focused};
    m_group = std::move(group);

    // From the focused window round to the one before it.
    auto order = chips;
    std::ranges::rotate(order, std::ranges::find(order, focused, &ChipData::id));
    std::ranges::stable_partition(order, [](auto* chip) { return !chip->isMinimized; });
    auto found = std::ranges::find_if(order, [this](auto* chip) { return !isVisited(chip->id); });
    auto id = found == order.end() ? focused : (*found)->id;
    m_visited.push_back(id);
    return id;
}

}
