#include "Quorvel/Views/SpaceCell.h"

#include "Quorvel/Platform/Translation.h"
#include "Quorvel/Views/Kit/Palette.h"

namespace quorvel {

namespace {

struct SpaceCellStyle {
    static constexpr double textSize = 0.5; ///< share of the cell's height
    static constexpr double heightShare = 0.82; ///< of the chip's height
    static constexpr double radius = 5;
    static constexpr double attentionSize = 6;
};

}

/// How many windows there are is read out; seen is only whether there are any.
void SpaceCell::setData(const SpaceCellData& data)
{
    auto seen = [](SpaceCellData value) {
        value.windowCount = value.windowCount > 0 ? 1 : 0;
        return value;
    };
    bool looksOther = seen(m_data) != seen(data);
    m_data = data;
    if (looksOther)
        invalidate();
}

AccessibleState SpaceCell::accessibleState() const
{
    auto state = buttonState(m_data.name, tr("Switch"));
    state.role = AccessibleRole::toggleButton;
    state.isSelected = m_data.isCurrent;
    state.name
        += ", " + trCount("{} window", "{} windows", static_cast<std::size_t>(m_data.windowCount));
    if (m_data.wantsAttention)
        state.name += ", " + tr("wants attention");
    return state;
}

void SpaceCell::paint(Canvas& canvas) const
{
    auto& colors = palette();
    double height = m_metrics.chipHeight * SpaceCellStyle::heightShare;
    auto face = bounds().centred({bounds().width, height});
    if (m_data.isCurrent) {
        canvas.fillRounded(face, SpaceCellStyle::radius, colors.focusedFill);
        canvas.strokeRounded(face, SpaceCellStyle::radius, 1, colors.edge);
    }
    paintFace(canvas, face, SpaceCellStyle::radius);
    if (m_isDropTarget)
        paintKeyFocus(canvas, face, SpaceCellStyle::radius, colors);
    bool isQuiet = !m_data.isCurrent && m_data.windowCount == 0;
    canvas.drawText(m_data.label, face,
        {.size = height * SpaceCellStyle::textSize,
            .weight = m_data.isCurrent ? FontWeight::semibold : FontWeight::regular,
            .color = isQuiet ? colors.quietText : colors.text,
            .alignment = TextAlignment::centre});
    if (m_data.wantsAttention) {
        double size = SpaceCellStyle::attentionSize;
        canvas.fillRounded(
            {face.maxX() - size - 1, face.y + 1, size, size}, size / 2, colors.attentionMark);
    }
}

}
