#include "Quorvel/Views/ShowDesktopButton.h"

namespace quorvel {

void ShowDesktopButton::paint(Canvas& canvas) const
{
    auto face = bounds().centred({m_metrics.menuButtonWidth, m_metrics.menuButtonHeight});
    paintFace(canvas, face, m_metrics.cornerRadius);
    double size = m_metrics.menuIconSize * 1.15;
    canvas.drawSymbol(
        Symbol::showDesktop, bounds().centred({size, size}), Color::grey(isDark() ? 0.9 : 0.15));
}

}
