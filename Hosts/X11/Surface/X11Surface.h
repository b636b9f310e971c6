#pragma once

#include "Quorvel/Platform/Surfaces.h"

namespace quorvel::x11 {

/// What menus need of any surface of this host.
class X11Surface : public PanelSurface {
public:
    /// Where it lies on the X screen.
    virtual Rect framePixels() const = 0;
    /// Something else takes the pointer now.
    virtual void cancelPointer() = 0;
};

}
