#include "Quorvel/Views/ScrollArrow.h"

#include "Quorvel/Views/Kit/Palette.h"

namespace quorvel {

namespace {

struct ScrollArrowStyle {
    static constexpr double symbolSize = 12;
    static constexpr double fade = 0.6; ///< share of the width over which the row fades out
    static constexpr double faceRadius = 5;
    static constexpr double edge = 1; ///< the bar's own line along its top stays
};

}

void ScrollArrow::paint(Canvas& canvas) const
{
    auto ground = palette().ground;
    bool isLeft = m_towards == Towards::left;
    std::vector<GradientStop> stops{
        {0, ground}, {1 - ScrollArrowStyle::fade, ground}, {1, ground.withAlpha(0)}};
    if (isLeft == m_isRightToLeft)
        stops = {{0, ground.withAlpha(0)}, {ScrollArrowStyle::fade, ground}, {1, ground}};
    auto covered = bounds();
    covered.y += ScrollArrowStyle::edge;
    covered.height -= ScrollArrowStyle::edge;
    canvas.fillGradient(covered, GradientDirection::leadingToTrailing, stops);
    Rect face = bounds().centred({bounds().width - 6, bounds().height - 8});
    paintFace(canvas, face, ScrollArrowStyle::faceRadius);
    canvas.drawSymbol(isLeft ? Symbol::chevronLeft : Symbol::chevronRight,
        bounds().centred({ScrollArrowStyle::symbolSize, ScrollArrowStyle::symbolSize}),
        palette().text);
}

}
