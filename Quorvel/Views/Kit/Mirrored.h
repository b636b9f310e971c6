#pragma once

#include "Quorvel/Platform/Geometry.h"

namespace quorvel {

/// The same place in a space of this width that runs the other way.
constexpr Rect mirrored(const Rect& rect, double width)
{
    return {width - rect.maxX(), rect.y, rect.width, rect.height};
}

}
