#pragma once

#include <map>
#include <vector>

#include "Hosts/Linux/Desktop/DesktopModel.h"
#include "Hosts/X11/Monitors.h"

namespace quorvel::xdg::x11 {

/// Which monitors show a full-screen window on top of the active space. Dialogs and tool windows
/// above it make no difference.
std::map<DisplayNumber, bool> coveredMonitors(
    const DesktopModel&, const std::vector<Monitor>&, const Coordinates&);

}
