#pragma once

#include "Quorvel/Platform/Identifiers.h"
#include "Quorvel/Platform/Image.h"

namespace quorvel::xdg {

/// The pictures that windows carry themselves. Main thread; may wait for the display server.
class WindowIcons {
public:
    virtual ~WindowIcons() = default;
    virtual Image of(WindowID) = 0; ///< null if it has none that can be read
};

}
