#include "Quorvel/Views/PinView.h"

#include "Quorvel/Platform/Translation.h"
#include "Quorvel/Views/Kit/Palette.h"

namespace quorvel {

namespace {

struct PinViewStyle {
    static constexpr double launchMarkSize = 4;
    static constexpr double launchMarkGap = 3; ///< from the lower edge
    static constexpr double launchOpacity = 0.6;
};

}

AccessibleState PinView::accessibleState() const
{
    auto state = buttonState(m_pin.name, tr("Open"));
    state.menuAction = state.actions.size();
    state.actions.push_back(tr("Show Menu"));
    if (m_pin.isLaunching)
        state.name += ", starting";
    return state;
}

void PinView::filesDropped(const std::vector<std::string>& paths)
{
    if (onFilesDropped)
        onFilesDropped(*this, paths);
}

void PinView::paintItem(Canvas& canvas) const
{
    auto place = face();
    paintFace(canvas, place, metrics().chipCornerRadius);
    paintRing(canvas);
    if (m_pin.isLaunching)
        canvas.beginOpacity(PinViewStyle::launchOpacity);
    canvas.drawImage(m_pin.icon, place.centred({metrics().iconSize, metrics().iconSize}));
    if (!m_pin.isLaunching)
        return;
    canvas.endOpacity();
    Rect mark{place.centre().x - PinViewStyle::launchMarkSize / 2,
        place.maxY() - PinViewStyle::launchMarkGap - PinViewStyle::launchMarkSize / 2,
        PinViewStyle::launchMarkSize, PinViewStyle::launchMarkSize};
    canvas.fillRounded(mark, mark.width / 2, palette().accent);
}

}
