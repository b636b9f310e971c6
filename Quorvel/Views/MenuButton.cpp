#include "Quorvel/Views/MenuButton.h"

#include "Quorvel/Platform/Translation.h"
#include "Quorvel/Views/Kit/Palette.h"

namespace quorvel {

void MenuButton::pointerPressed(const PointerPress& press)
{
    ButtonView::pointerPressed(press);
    m_isPressUsed = press.button == PointerButton::primary && onPressed && onPressed();
}

void MenuButton::released(PointerButton button, bool isInside)
{
    ButtonView::released(button, isInside && !m_isPressUsed);
}

void MenuButton::setLauncherOpen(bool isOpen)
{
    m_isLauncherOpen = isOpen;
    setOpen(m_isLauncherOpen || m_isMenuOpen);
}

void MenuButton::setMenuOpen(bool isOpen)
{
    m_isMenuOpen = isOpen;
    setOpen(m_isLauncherOpen || m_isMenuOpen);
}

AccessibleState MenuButton::accessibleState() const
{
    auto state = buttonState(tr("Applications"), tr("Open"));
    state.menuAction = state.actions.size();
    state.actions.push_back(tr("Show Menu"));
    return state;
}

void MenuButton::paint(Canvas& canvas) const
{
    auto face = bounds().centred({m_metrics.menuButtonWidth, m_metrics.menuButtonHeight});
    paintFace(canvas, face, m_metrics.cornerRadius);
    canvas.drawSymbol(Symbol::menuGrid,
        bounds().centred({m_metrics.menuIconSize, m_metrics.menuIconSize}), palette().text);
}

}
