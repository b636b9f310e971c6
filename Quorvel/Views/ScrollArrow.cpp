#include "Quorvel/Views/ScrollArrow.h"

#include "Quorvel/Views/Kit/Palette.h"

namespace quorvel {

namespace {

struct Style {
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
        {0, ground}, {1 - Style::fade, ground}, {1, ground.withAlpha(0)}};
    if (isLeft == m_isRightToLeft)
        stops = {{0, ground.withAlpha(0)}, {Style::fade, ground}, {1, ground}};
    auto covered = bounds();
    covered.y += Style::edge;
    covered.height -= Style::edge;
    canvas.fillGradient(covered, GradientDirection::leadingToTrailing, stops);
    Rect face = bounds().centred({bounds().width - 6, bounds().height - 8});
    paintFace(canvas, face, Style::faceRadius);
    canvas.drawSymbol(isLeft ? Symbol::chevronLeft : Symbol::chevronRight,
        bounds().centred({Style::symbolSize, Style::symbolSize}), palette().text);
}

}
