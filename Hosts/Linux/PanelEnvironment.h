#pragma once

#include <functional>
#include <map>

#include "Quorvel/Platform/Identifiers.h"
#include "Quorvel/Platform/Published.h"

namespace quorvel::xdg {

/// What the panels' windows need to know about the desktop: written by the mirror and the window
/// server, read by the surfaces, which ask for a space through it. Main thread.
struct PanelEnvironment {
    Published<SpaceID> activeSpace;
    Published<bool> isShowingDesktop; ///< passed on to the core by the window server
    /// Monitors whose top window is full screen: the panel goes below it.
    Published<std::map<DisplayNumber, bool>> isCovered;
    /// Points to keep free at the bottom of a display, as the bar requested.
    Published<std::map<DisplayNumber, double>> dockHeights;
    /// Points to keep free at the bottom of every display while this space is the current one.
    Published<std::map<SpaceID, double>> edgeReservations;
    /// Whether a strip at the bottom of the display can be reserved at all. Set by the code of the
    /// display server.
    std::function<bool(DisplayNumber)> canReserve;
    /// A panel of another space asks to be seen.
    Signal<SpaceID> spaceWanted;
};

}
