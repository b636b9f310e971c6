#include "Quorvel/Views/ShowDesktopButton.h"

#include "Quorvel/Views/Kit/Palette.h"

namespace quorvel {

void ShowDesktopButton::paint(Canvas& canvas) const
{
    auto face = bounds().centred({m_metrics.menuButtonWidth, m_metrics.menuButtonHeight});
    paintFace(canvas, face, m_metrics.cornerRadius);
    double size = m_metrics.menuIconSize * 1.15;
    canvas.drawSymbol(Symbol::showDesktop, bounds().centred({size, size}), palette().text);
}

}
