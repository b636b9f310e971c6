#pragma once

#include "Hosts/Linux/PlacedSurface.h"

namespace quorvel::xdg::x11 {

/// What menus need of any surface of this host.
class X11Surface : public PlacedSurface {
public:
    /// Something else takes the pointer now.
    virtual void losePointer() = 0;
};

}
