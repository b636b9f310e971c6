#include "Quorvel/Views/ScrollArrow.h"

#include "Quorvel/Platform/Translation.h"
#include "Quorvel/Views/Kit/Palette.h"

namespace quorvel {

namespace {

struct ScrollArrowStyle {
    static constexpr double symbolSize = 12;
    static constexpr double faceRadius = 5;
};

}

bool ScrollArrow::setTellsAttention(bool tellsAttention)
{
    if (m_tellsAttention == tellsAttention)
        return false;
    set(m_tellsAttention, tellsAttention);
    return true;
}

std::string ScrollArrow::accessibleID() const
{
    return m_towards == Towards::left ? "scroll-left" : "scroll-right";
}

AccessibleState ScrollArrow::accessibleState() const
{
    return buttonState(tr("A window out of sight wants attention"), tr("Scroll"));
}

std::string ScrollArrow::tooltip() const
{
    return m_tellsAttention ? accessibleState().name : tr("Scroll");
}

void ScrollArrow::paint(Canvas& canvas) const
{
    Rect face = bounds().centred({bounds().width - 6, bounds().height - 8});
    // Marks stand out from the ground, hence so does what is drawn on them in its colour.
    if (m_tellsAttention)
        canvas.fillRounded(face, ScrollArrowStyle::faceRadius, palette().attentionMark);
    paintFace(canvas, face, ScrollArrowStyle::faceRadius);
    canvas.drawSymbol(m_towards == Towards::left ? Symbol::chevronLeft : Symbol::chevronRight,
        bounds().centred({ScrollArrowStyle::symbolSize, ScrollArrowStyle::symbolSize}),
        m_tellsAttention ? palette().ground : palette().text);
}

}
