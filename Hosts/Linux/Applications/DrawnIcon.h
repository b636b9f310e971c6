#pragma once

#include "Hosts/Linux/Applications/RenderedIcon.h"

namespace quorvel::xdg {

/// A generic picture of a window, for programs without an icon where the theme has none either.
class DrawnIcon final : public RenderedIcon {
public:
    using RenderedIcon::RenderedIcon;

protected:
    std::optional<SurfacePointer> draw(int pixels) const override;
};

}
