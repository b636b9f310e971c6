#include "Quorvel/Views/Kit/LabelView.h"

#include <utility>

#include "Quorvel/Views/Kit/WrappedText.h"

namespace quorvel {

void LabelView::setText(std::string utf8)
{
    if (m_text == utf8)
        return;
    m_text = std::move(utf8);
    layout();
    invalidate();
}

double LabelView::heightFor(double width) const
{
    return static_cast<double>(linesAt(width).size()) * m_measure.measure("x", style()).height;
}

void LabelView::layout()
{
    m_lines = linesAt(bounds().width);
    m_lineHeight = m_measure.measure("x", style()).height;
}

std::vector<std::string> LabelView::linesAt(double width) const
{
    return wrappedLines(m_measure, m_text, style(), width, m_look.mostLines);
}

TextStyle LabelView::style() const
{
    return {.size = m_look.size,
        .weight = m_look.weight,
        .color = m_palette.*m_look.color,
        .alignment = m_look.alignment};
}

/// The lines lie around the middle of the view.
void LabelView::paint(Canvas& canvas) const
{
    double height = m_lineHeight * static_cast<double>(m_lines.size());
    double y = (bounds().height - height) / 2;
    for (auto& line : m_lines) {
        canvas.drawText(line, {0, y, bounds().width, m_lineHeight}, style());
        y += m_lineHeight;
    }
}

AccessibleState LabelView::accessibleState() const
{
    AccessibleState state;
    state.role = m_look.role;
    state.name = m_text;
    return state;
}

}
