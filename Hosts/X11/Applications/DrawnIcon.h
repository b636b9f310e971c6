#pragma once

#include "Hosts/X11/Applications/RenderedIcon.h"

namespace quorvel::x11 {

/// A picture of a window, for programs without one where the theme has none either.
class DrawnIcon final : public RenderedIcon {
protected:
    SurfacePointer draw(int pixels) const override;
};

}
