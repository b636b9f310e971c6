#pragma once

#include "Quorvel/Platform/Surfaces.h"

namespace quorvel::xdg {

/// A surface whose position this program knows: assistive programs ask for it.
class PlacedSurface : public PanelSurface {
public:
    /// Its frame in the coordinates of all screens together, pixels from the top left.
    virtual Rect framePixels() const = 0;
};

}
