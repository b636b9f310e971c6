#pragma once

#include "Quorvel/Platform/Surfaces.h"

namespace quorvel::xdg {

/// A surface whose place is known to this program: assistive programs ask for it.
class PlacedSurface : public PanelSurface {
public:
    /// Where it lies on the whole of the screens, pixels from the top left.
    virtual Rect framePixels() const = 0;
};

}
