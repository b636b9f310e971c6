#include "Quorvel/Views/Kit/Shadow.h"

#include "Quorvel/Views/Kit/Palette.h"

namespace quorvel {

namespace {

constexpr int kLayers = 5;
constexpr double kFall = 1.0 / 6; ///< of its reach: light comes from above

}

/// Each layer adds to those around it, so that the shadow is darkest at the face.
void paintShadow(
    Canvas& canvas, const Rect& face, double radius, double reach, const Palette& palette)
{
    double fall = reach * kFall;
    for (int layer = kLayers; layer > 0; --layer) {
        double around = (reach - fall) * layer / kLayers;
        canvas.fillRounded(
            face.inset(-around, -around).translated(0, fall), radius + around, palette.shadow);
    }
}

}
