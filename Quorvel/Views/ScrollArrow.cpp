#include "Quorvel/Views/ScrollArrow.h"

#include "Quorvel/Views/Kit/Palette.h"

namespace quorvel {

namespace {

struct ScrollArrowStyle {
    static constexpr double symbolSize = 12;
    static constexpr double faceRadius = 5;
};

}

void ScrollArrow::paint(Canvas& canvas) const
{
    Rect face = bounds().centred({bounds().width - 6, bounds().height - 8});
    paintFace(canvas, face, ScrollArrowStyle::faceRadius);
    canvas.drawSymbol(m_towards == Towards::left ? Symbol::chevronLeft : Symbol::chevronRight,
        bounds().centred({ScrollArrowStyle::symbolSize, ScrollArrowStyle::symbolSize}),
        palette().text);
}

}
