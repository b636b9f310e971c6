#include "Quorvel/Views/PermissionsGateSection.h"

#include <cmath>
#include <utility>

#include "Quorvel/Views/Kit/LabelView.h"

namespace quorvel {

namespace {

struct PermissionsGateSectionStyle {
    static constexpr double headGap = 8; ///< above the card
    static constexpr double radius = 10;
    static constexpr double inset = 16;
    static constexpr double padding = 12; ///< above and below each row, or all of them
    static constexpr double line = 1;
    static constexpr LabelView::Look title{
        .size = 14, .weight = FontWeight::semibold, .role = AccessibleRole::heading};
    static constexpr LabelView::Look subtitle{
        .size = 12, .color = &Palette::quietText, .mostLines = 2};
};

}

PermissionsGateSection::PermissionsGateSection(const Text& text, const Palette& palette, Look look)
    : m_palette(palette)
    , m_look(look)
    , m_title(
          &addChild(std::make_unique<LabelView>(text, palette, PermissionsGateSectionStyle::title)))
    , m_subtitle(&addChild(
          std::make_unique<LabelView>(text, palette, PermissionsGateSectionStyle::subtitle)))
{
}

void PermissionsGateSection::setTitles(std::string title, std::string subtitle)
{
    m_title->setText(std::move(title));
    m_subtitle->setText(std::move(subtitle));
}

double PermissionsGateSection::headHeight(double width) const
{
    return std::ceil(m_title->heightFor(width)) + std::ceil(m_subtitle->heightFor(width));
}

double PermissionsGateSection::heightFor(double width) const
{
    double height = headHeight(width) + PermissionsGateSectionStyle::headGap
        + 2 * PermissionsGateSectionStyle::padding;
    for (auto* row : m_rows)
        height += std::ceil(row->heightFor(width - 2 * PermissionsGateSectionStyle::inset));
    double between = m_look.hasLines
        ? 2 * PermissionsGateSectionStyle::padding + PermissionsGateSectionStyle::line
        : m_look.rowGap;
    return height + between * static_cast<double>(m_rows.empty() ? 0 : m_rows.size() - 1);
}

void PermissionsGateSection::appearanceDidChange(bool isRightToLeft)
{
    m_title->measureAgain();
    m_subtitle->measureAgain();
    for (auto* row : m_rows)
        row->appearanceDidChange(isRightToLeft);
    layout();
}

void PermissionsGateSection::layout()
{
    double width = bounds().width;
    double title = std::ceil(m_title->heightFor(width));
    m_title->setFrame({0, 0, width, title});
    m_subtitle->setFrame({0, title, width, headHeight(width) - title});
    double between = m_look.hasLines
        ? 2 * PermissionsGateSectionStyle::padding + PermissionsGateSectionStyle::line
        : m_look.rowGap;
    double y = headHeight(width) + PermissionsGateSectionStyle::headGap
        + PermissionsGateSectionStyle::padding;
    for (auto* row : m_rows) {
        double room = width - 2 * PermissionsGateSectionStyle::inset;
        row->setFrame(
            {PermissionsGateSectionStyle::inset, y, room, std::ceil(row->heightFor(room))});
        y += row->frame().height + between;
    }
}

void PermissionsGateSection::paint(Canvas& canvas) const
{
    double top = headHeight(bounds().width) + PermissionsGateSectionStyle::headGap;
    Rect card{0, top, bounds().width, bounds().height - top};
    canvas.fillRounded(card, PermissionsGateSectionStyle::radius, m_palette.windowCard);
    canvas.strokeRounded(card, PermissionsGateSectionStyle::radius,
        PermissionsGateSectionStyle::line, m_palette.windowEdge);
    for (std::size_t row = 1; m_look.hasLines && row < m_rows.size(); ++row) {
        double y = m_rows[row]->frame().y - PermissionsGateSectionStyle::padding
            - PermissionsGateSectionStyle::line;
        canvas.fill({PermissionsGateSectionStyle::inset, y,
                        card.width - 2 * PermissionsGateSectionStyle::inset,
                        PermissionsGateSectionStyle::line},
            m_palette.windowEdge);
    }
}

}
