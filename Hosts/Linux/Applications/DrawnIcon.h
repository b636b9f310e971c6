#pragma once

#include "Hosts/Linux/Applications/RenderedIcon.h"

namespace quorvel::xdg {

/// A picture of a window, for programs without one where the theme has none either.
class DrawnIcon final : public RenderedIcon {
public:
    using RenderedIcon::RenderedIcon;

protected:
    SurfacePointer draw(int pixels) const override;
};

}
