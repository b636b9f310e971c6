#pragma once

#include "Quorvel/Core/DisplayItem.h"
#include "Quorvel/Platform/Surfaces.h"

namespace quorvel {

class BarViewModel;

/// What the menu of a chip on this space offers. Its actions do nothing once the model is gone.
Menu chipMenu(const DisplayItem&, const BarViewModel&, SpaceID);

}
