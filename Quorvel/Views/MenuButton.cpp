#include "Quorvel/Views/MenuButton.h"

#include "Quorvel/Views/Kit/Palette.h"

namespace quorvel {

void MenuButton::paint(Canvas& canvas) const
{
    auto face = bounds().centred({m_metrics.menuButtonWidth, m_metrics.menuButtonHeight});
    paintFace(canvas, face, m_metrics.cornerRadius);
    canvas.drawSymbol(Symbol::menuGrid,
        bounds().centred({m_metrics.menuIconSize, m_metrics.menuIconSize}), palette().text);
}

}
