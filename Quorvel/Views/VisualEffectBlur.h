#pragma once

#include "Quorvel/Platform/Surfaces.h"

namespace quorvel {

/// The desktop behind a panel, blurred, and lit even while another program is in front. The host
/// draws it behind everything the views draw.
struct VisualEffectBlur {
    int material = VisualEffect::kHUDWindow;
    int blendingMode = VisualEffect::kBehindWindow;

    VisualEffect effect(double opacity = 1) const
    {
        return {material, blendingMode, VisualEffect::kActive, opacity};
    }
};

}
