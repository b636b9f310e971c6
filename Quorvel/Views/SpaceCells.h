#pragma once

#include <vector>

#include "Quorvel/Core/BarViewModel.h"
#include "Quorvel/Views/SpaceSwitcher.h"

namespace quorvel {

class Spaces;

/// One cell for each space of the display that has the current space; none while that is unknown.
std::vector<SpaceCellData> spaceCells(const BarViewModel&, const Spaces&, SpaceID current);
/// Whether the chips of each space are still what the cells say of them. Cheap: most changes of
/// chips are titles, of which the cells say nothing.
bool areCurrent(const std::vector<SpaceCellData>&, const BarViewModel::ChipsBySpace&);

}
