#pragma once

#include <vector>

#include "Quorvel/Core/BarViewModel.h"
#include "Quorvel/Views/SpaceSwitcher.h"

namespace quorvel {

class Spaces;

/// One cell for each space of the display that has the current space; none while that is unknown.
std::vector<SpaceCellData> spaceCells(const BarViewModel&, const Spaces&, SpaceID current);

}
