#include "Quorvel/Views/PinView.h"

#include "Quorvel/Platform/Translation.h"
#include "Quorvel/Views/ItemMarks.h"
#include "Quorvel/Views/Kit/Palette.h"

namespace quorvel {

namespace {

struct PinViewStyle {
    static constexpr double markHeight = 2; ///< below the icon
    static constexpr double openMarkWidth = 6;
    static constexpr double launchMarkSize = 4;
    static constexpr double launchMarkGap = 3; ///< from the lower edge
    static constexpr double launchOpacity = 0.6;
    static constexpr double leavingOpacity = 0.3;
};

}

AccessibleState PinView::accessibleState() const
{
    auto state = buttonState(m_pin.name, tr("Open"));
    state.menuAction = state.actions.size();
    state.actions.push_back(tr("Show Menu"));
    state.progress = m_pin.state.progress;
    if (m_pin.state.badge)
        state.name += ", " + itemMarks::badgeText(*m_pin.state.badge);
    if (m_pin.state.isOpenElsewhere)
        state.name += ", " + tr("open on another desktop");
    if (m_pin.state.wantsAttention)
        state.name += ", " + tr("wants attention");
    if (m_pin.isLaunching)
        state.name += ", " + tr("starting");
    return state;
}

void PinView::setPulse(double strength)
{
    if (std::exchange(m_pulse, strength) != strength && asksForAttention())
        invalidate();
}

void PinView::filesDropped(const std::vector<std::string>& paths)
{
    if (onFilesDropped)
        onFilesDropped(*this, paths);
}

void PinView::paintItem(Canvas& canvas) const
{
    auto place = face();
    double radius = metrics().chipCornerRadius;
    bool isFaint = m_pin.isLaunching || m_isLeaving;
    paintFace(canvas, place, radius);
    itemMarks::paintProgress(
        canvas, place, radius, m_pin.state.progress, isRightToLeft(), palette());
    if (asksForAttention())
        itemMarks::paintAttention(canvas, place, radius, m_pulse, palette());
    paintRing(canvas);
    auto icon = place.centred({metrics().iconSize, metrics().iconSize});
    if (isFaint)
        canvas.beginOpacity(
            m_isLeaving ? PinViewStyle::leavingOpacity : PinViewStyle::launchOpacity);
    canvas.drawImage(m_pin.icon, icon);
    if (isFaint)
        canvas.endOpacity();
    paintMarks(canvas, icon);
}

void PinView::paintMarks(Canvas& canvas, const Rect& icon) const
{
    auto place = face();
    if (m_pin.isLaunching) {
        Rect mark{place.centre().x - PinViewStyle::launchMarkSize / 2,
            place.maxY() - PinViewStyle::launchMarkGap - PinViewStyle::launchMarkSize / 2,
            PinViewStyle::launchMarkSize, PinViewStyle::launchMarkSize};
        canvas.fillRounded(mark, mark.width / 2, palette().accent);
    } else if (m_pin.state.isOpenElsewhere) {
        Rect mark{place.centre().x - PinViewStyle::openMarkWidth / 2,
            place.maxY() - PinViewStyle::markHeight, PinViewStyle::openMarkWidth,
            PinViewStyle::markHeight};
        canvas.fillRounded(mark, mark.height / 2, palette().quietText);
    }
    if (!m_pin.state.badge)
        return;
    auto badge = itemMarks::badgeRect(m_text, *m_pin.state.badge, icon, place.width, metrics());
    if (isRightToLeft())
        badge.x = place.width - badge.maxX();
    itemMarks::paintPill(canvas, badge, *m_pin.state.badge, palette().badge, palette().badgeText);
}

}
