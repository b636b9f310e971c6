#pragma once

#include "Quorvel/Platform/Geometry.h"

namespace quorvel {

/// The colour of the bar where the desktop cannot show through, chosen close to how it looks
/// blurred.
inline constexpr Color opaqueBarColor(bool isDark)
{
    return isDark ? Color::grey(37.0 / 255) : Color::grey(0.93);
}

}
