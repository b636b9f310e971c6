#pragma once

#include <vector>

#include "Hosts/Linux/Applications/Icons.h"
#include "Quorvel/Platform/Identifiers.h"

namespace quorvel::xdg {

/// The pictures that windows provide. Main thread; may wait for the display server.
class WindowIcons {
public:
    virtual ~WindowIcons() = default;
    /// In several sizes; empty if it has none that is readable.
    virtual std::vector<IconPixels> of(WindowID) = 0;
};

}
