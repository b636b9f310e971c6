#include "Quorvel/Core/ChipsBySpace.h"

#include <algorithm>

namespace quorvel {

const ChipData* findChip(const ChipsBySpace& chipsBySpace, SpaceID space, WindowID id)
{
    auto chips = chipsBySpace.find(space);
    if (chips == chipsBySpace.end())
        return nullptr;
    auto found = std::ranges::lower_bound(chips->second, id, {}, &ChipData::id);
    return found == chips->second.end() || found->id != id ? nullptr : &*found;
}

std::vector<const ChipData*> findChips(
    const ChipsBySpace& chipsBySpace, SpaceID space, const std::vector<WindowID>& ids)
{
    std::vector<const ChipData*> chips;
    for (auto id : ids) {
        if (auto* found = findChip(chipsBySpace, space, id))
            chips.push_back(found);
    }
    return chips;
}

}
