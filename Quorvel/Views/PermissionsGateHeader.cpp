#include "Quorvel/Views/PermissionsGateHeader.h"

#include <cmath>

#include "Quorvel/Platform/Translation.h"
#include "Quorvel/Views/Kit/LabelView.h"

namespace quorvel {

namespace {

struct PermissionsGateHeaderStyle {
    static constexpr double tile = 48;
    static constexpr double tileRadius = 12;
    static constexpr double symbol = 30;
    static constexpr double gap = 16; ///< from the tile to the texts
    static constexpr LabelView::Look title{
        .size = 20, .weight = FontWeight::semibold, .role = AccessibleRole::heading};
    static constexpr LabelView::Look subtitle{
        .size = 13, .color = &Palette::quietText, .mostLines = 2};
};

}

PermissionsGateHeader::PermissionsGateHeader(const Text& text, const Palette& palette)
    : m_palette(palette)
    , m_title(
          &addChild(std::make_unique<LabelView>(text, palette, PermissionsGateHeaderStyle::title)))
    , m_subtitle(&addChild(
          std::make_unique<LabelView>(text, palette, PermissionsGateHeaderStyle::subtitle)))
{
    m_title->setText(tr("Quorvel Setup"));
    m_subtitle->setText(tr("Set up permissions before the app can start."));
}

double PermissionsGateHeader::heightFor(double width) const
{
    double room = width - PermissionsGateHeaderStyle::tile - PermissionsGateHeaderStyle::gap;
    double texts = std::ceil(m_title->heightFor(room)) + std::ceil(m_subtitle->heightFor(room));
    return std::max(PermissionsGateHeaderStyle::tile, texts);
}

void PermissionsGateHeader::appearanceDidChange(bool isRightToLeft)
{
    m_isRightToLeft = isRightToLeft;
    m_title->measureAgain();
    m_subtitle->measureAgain();
    layout();
}

void PermissionsGateHeader::layout()
{
    auto place = [this](const Rect& rect) {
        return m_isRightToLeft ? mirrored(rect, bounds().width) : rect;
    };
    double height = bounds().height;
    double x = PermissionsGateHeaderStyle::tile + PermissionsGateHeaderStyle::gap;
    double room = std::max(0.0, bounds().width - x);
    double title = std::ceil(m_title->heightFor(room));
    double subtitle = std::ceil(m_subtitle->heightFor(room));
    double top = std::round((height - title - subtitle) / 2);
    m_tile = place({0, std::round((height - PermissionsGateHeaderStyle::tile) / 2),
        PermissionsGateHeaderStyle::tile, PermissionsGateHeaderStyle::tile});
    m_title->setFrame(place({x, top, room, title}));
    m_subtitle->setFrame(place({x, top + title, room, subtitle}));
}

void PermissionsGateHeader::paint(Canvas& canvas) const
{
    canvas.fillRounded(m_tile, PermissionsGateHeaderStyle::tileRadius, m_palette.highlight);
    canvas.drawSymbol(Symbol::lockShield,
        m_tile.centred({PermissionsGateHeaderStyle::symbol, PermissionsGateHeaderStyle::symbol}),
        m_palette.highlightedText);
}

}
