#pragma once

#include "Quorvel/Platform/Canvas.h"

namespace quorvel {

struct Palette;

/// So far beyond its edges a face throws a shadow where there is room; points.
constexpr double kShadowReach = 6;

/// The soft shadow of what lies above the rest, to be painted before the face, which covers its
/// middle. It reaches no further than that many points.
void paintShadow(Canvas&, const Rect& face, double radius, double reach, const Palette&);

}
