#pragma once

#include <functional>
#include <map>

#include "Quorvel/Platform/Identifiers.h"
#include "Quorvel/Platform/Published.h"

namespace quorvel::xdg {

/// What the panels' windows must know of the desktop: written by the mirror and the window server,
/// read by the surfaces, which ask for a space through it. Main thread.
struct PanelEnvironment {
    Published<SpaceID> activeSpace;
    /// Monitors whose top window is full screen: the panel lies under it.
    Published<std::map<DisplayNumber, bool>> isCovered;
    /// Points to keep free at the bottom of a display, as the bar asked for.
    Published<std::map<DisplayNumber, double>> dockHeights;
    /// Points to keep free at the bottom of every display while this space is the current one.
    Published<std::map<SpaceID, double>> edgeReservations;
    /// Whether a strip at the bottom of the display can be kept free at all. Set by the display
    /// server's half.
    std::function<bool(DisplayNumber)> canReserve;
    /// A panel of another space wants to be seen.
    Signal<SpaceID> spaceWanted;
};

}
