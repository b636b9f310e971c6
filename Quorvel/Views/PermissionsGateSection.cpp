#include "Quorvel/Views/PermissionsGateSection.h"

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

class PermissionsGateCard final : public ColumnView {
    using Style = PermissionsGateSectionStyle;

public:
    PermissionsGateCard(const Palette& palette, PermissionsGateSection::Look look)
        : ColumnView({.sides = Style::inset,
              .top = Style::padding,
              .bottom = Style::padding,
              .gap = look.hasLines ? 2 * Style::padding + Style::line : look.rowGap})
        , m_palette(palette)
        , m_hasLines(look.hasLines)
    {
    }

private:
    void paint(Canvas& canvas) const override
    {
        canvas.fillRounded(bounds(), Style::radius, m_palette.windowCard);
        canvas.strokeRounded(bounds(), Style::radius, Style::line, m_palette.windowEdge);
        for (std::size_t row = 1; m_hasLines && row < parts().size(); ++row) {
            auto below = parts()[row].view->frame();
            canvas.fill({below.x, below.y - Style::padding - Style::line, below.width, Style::line},
                m_palette.windowEdge);
        }
    }

    const Palette& m_palette;
    const bool m_hasLines;
};

}

PermissionsGateSection::PermissionsGateSection(const Text& text, const Palette& palette, Look look)
    : ColumnView({})
    , m_title(
          &addPart(std::make_unique<LabelView>(text, palette, PermissionsGateSectionStyle::title)))
    , m_subtitle(&addPart(
          std::make_unique<LabelView>(text, palette, PermissionsGateSectionStyle::subtitle)))
    , m_card(&addPart(std::make_unique<PermissionsGateCard>(palette, look),
          PermissionsGateSectionStyle::headGap))
{
}

void PermissionsGateSection::setTitles(std::string title, std::string subtitle)
{
    m_title->setText(std::move(title));
    m_subtitle->setText(std::move(subtitle));
}

}
