#include "Quorvel/Views/PinView.h"

#include "Quorvel/Views/ChipView.h"

namespace quorvel {

namespace {

struct Style {
    static constexpr double launchMarkSize = 4;
    static constexpr double launchMarkGap = 3; ///< from the lower edge
    static constexpr double launchOpacity = 0.6;
    static constexpr Color launchMark{0.30, 0.60, 1.0};
};

}

void PinView::pressed(PointerButton button)
{
    drag.pressed(button);
    ButtonView::pressed(button);
}

void PinView::dragged(const DragMove& move)
{
    if (drag.dragged(move))
        ButtonView::pressCancelled();
}

void PinView::released(PointerButton button, bool isInside)
{
    if (!drag.released())
        ButtonView::released(button, isInside);
}

void PinView::pressCancelled()
{
    ButtonView::pressCancelled();
    drag.cancelled();
}

AccessibleState PinView::accessibleState() const
{
    auto state = buttonState(m_pin.name, "Open");
    state.menuAction = state.actions.size();
    state.actions.emplace_back("Show Menu");
    if (m_pin.isLaunching)
        state.name += ", starting";
    return state;
}

void PinView::filesDropped(const std::vector<std::string>& paths)
{
    if (onFilesDropped)
        onFilesDropped(*this, paths);
}

void PinView::paint(Canvas& canvas) const
{
    if (m_isLifted) {
        canvas.save();
        canvas.magnify(ChipView::kLiftedScale, bounds().centre());
        canvas.beginOpacity(ChipView::kLiftedOpacity);
    }
    auto face = bounds().centred({bounds().width, m_metrics.chipHeight});
    paintFace(canvas, face, m_metrics.chipCornerRadius);
    if (m_hasFilesOver)
        paintKeyFocus(canvas, face, m_metrics.chipCornerRadius, isDark());
    if (m_pin.isLaunching)
        canvas.beginOpacity(Style::launchOpacity);
    canvas.drawImage(m_pin.icon, face.centred({m_metrics.iconSize, m_metrics.iconSize}));
    if (m_pin.isLaunching) {
        canvas.endOpacity();
        Rect mark{face.centre().x - Style::launchMarkSize / 2,
            face.maxY() - Style::launchMarkGap - Style::launchMarkSize / 2, Style::launchMarkSize,
            Style::launchMarkSize};
        canvas.fillRounded(mark, mark.width / 2, Style::launchMark);
    }
    if (m_isLifted) {
        canvas.endOpacity();
        canvas.restore();
    }
}

}
