#pragma once

#include <functional>

#include "Quorvel/Core/DisplayItem.h"
#include "Quorvel/Platform/Surfaces.h"

namespace quorvel {

class BarViewModel;

/// Runs an action on the model if it is still there.
using ModelAction = std::function<void(BarViewModel&)>;
using PerformOnModel = std::function<void(const ModelAction&)>;

/// What the menu of a chip on this space offers. Its actions reach the model through `perform`
/// only.
Menu chipMenu(const DisplayItem&, const BarViewModel&, SpaceID, PerformOnModel perform);

}
