#include "Quorvel/Views/Kit/Shadow.h"

#include "Quorvel/Views/Kit/Palette.h"

namespace quorvel {

namespace {

constexpr double kStep = 1;
constexpr double kFall = 1; ///< light comes from above

}

/// Each layer adds to those around it, so that the shadow is darkest at the face.
void paintShadow(Canvas& canvas, const Rect& face, double radius, const Palette& palette)
{
    for (double reach = kShadowReach - kFall; reach > 0; reach -= kStep)
        canvas.fillRounded(
            face.inset(-reach, -reach).translated(0, kFall), radius + reach, palette.shadow);
}

}
