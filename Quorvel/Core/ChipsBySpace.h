#pragma once

#include <map>
#include <vector>

#include "Quorvel/Core/DisplayItem.h"

namespace quorvel {

/// On each space in ascending order of the windows' numbers.
using ChipsBySpace = std::map<SpaceID, std::vector<ChipData>>;

/// Null if the window has no chip there.
const ChipData* findChip(const ChipsBySpace&, SpaceID, WindowID);
/// Of those that have one, in the order given.
std::vector<const ChipData*> findChips(const ChipsBySpace&, SpaceID, const std::vector<WindowID>&);

}
