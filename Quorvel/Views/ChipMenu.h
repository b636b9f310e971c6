#pragma once

#include <functional>
#include <vector>

#include "Quorvel/Core/DisplayItem.h"
#include "Quorvel/Platform/Surfaces.h"
#include "Quorvel/Views/SpaceSwitcher.h"

namespace quorvel {

class BarViewModel;
class PinStates;
class PinStore;
class WindowStates;
class Workspace;

/// What the menus of chips and pins are built from and act on. The services live as long as the
/// model.
struct ChipMenuContext {
    BarViewModel& viewModel;
    PinStore& pinStore;
    Workspace& workspace;
    WindowStates& windowStates;
    const PinStates& pinStates;
    SpaceID spaceID{};
    std::vector<SpaceCellData> spaces; ///< of the display
    std::function<void(const std::vector<WindowID>&, SpaceID to)> onMoveWindowToSpace;
    std::function<void(const std::vector<WindowID>&, SpaceID from)> onWindowsFetched;
    std::function<void(WindowID)> onWindowRequested;
    std::function<void(const std::string& bundleID)> onLaunch;
    std::function<Menu(WindowID)> aboutWindow; ///< empty unless it is asked for
};

/// The entries in the menu of a chip. Their actions do nothing once the model is gone.
Menu chipMenu(const DisplayItem&, const ChipMenuContext&);
/// The entries in the menu of a pinned application without a window on the bar's space.
Menu pinMenu(const std::string& bundleID, const ChipMenuContext&);

}
