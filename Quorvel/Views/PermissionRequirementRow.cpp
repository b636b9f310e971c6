#include "Quorvel/Views/PermissionRequirementRow.h"

#include <cmath>
#include <utility>

#include "Quorvel/Platform/Translation.h"
#include "Quorvel/Views/Kit/LabelView.h"
#include "Quorvel/Views/Kit/PushButton.h"
#include "Quorvel/Views/StatusBadge.h"

namespace quorvel {

namespace {

struct PermissionRequirementRowStyle {
    static constexpr double tile = 36;
    static constexpr double tileRadius = 8;
    static constexpr double symbol = 22;
    static constexpr double gap = 12; ///< from the tile to the texts, and above the buttons
    static constexpr double lineGap = 2; ///< between the texts
    static constexpr double buttonHeight = 28;
    static constexpr double buttonGap = 8;
    static constexpr LabelView::Look title{.size = 14, .weight = FontWeight::medium, .id = "title"};
    static constexpr LabelView::Look description{.size = 13, .mostLines = 3, .id = "description"};
    static constexpr LabelView::Look help{
        .size = 12, .color = &Palette::quietText, .mostLines = 2, .id = "help"};
};

}

PermissionRequirementRow::PermissionRequirementRow(
    const Text& text, const Palette& palette, Requirement requirement)
    : m_palette(palette)
    , m_requirement(std::move(requirement))
    , m_title(&addChild(
          std::make_unique<LabelView>(text, palette, PermissionRequirementRowStyle::title)))
    , m_badge(&addChild(std::make_unique<StatusBadge>(text, palette)))
    , m_description(&addChild(
          std::make_unique<LabelView>(text, palette, PermissionRequirementRowStyle::description)))
    , m_help(&addChild(
          std::make_unique<LabelView>(text, palette, PermissionRequirementRowStyle::help)))
    , m_request(&addChild(
          std::make_unique<PushButton>(text, palette, PushButton::Kind::standard, "request")))
    , m_openSettings(&addChild(
          std::make_unique<PushButton>(text, palette, PushButton::Kind::standard, "settings")))
{
    m_title->setText(m_requirement.title);
    m_description->setText(m_requirement.description);
    m_help->setText(m_requirement.helpText);
    m_request->setTitle(tr("Request Access"));
    m_openSettings->setTitle(tr("Open Settings"));
    auto run = [](auto& action) {
        if (action)
            action();
    };
    m_request->onTapped = [this, run] { run(requestAction); };
    m_openSettings->onTapped = [this, run] { run(openSettingsAction); };
}

void PermissionRequirementRow::setGranted(bool isGranted)
{
    if (std::exchange(m_isGranted, isGranted) == isGranted)
        return;
    m_badge->setGranted(isGranted);
    m_request->setTitle(isGranted ? tr("Check Again") : tr("Request Access"));
    layout();
}

AccessibleState PermissionRequirementRow::accessibleState() const
{
    AccessibleState state;
    state.role = AccessibleRole::group;
    state.name = m_requirement.title + ", " + m_badge->text();
    return state;
}

PermissionRequirementRow::Layout PermissionRequirementRow::layoutFor(double width) const
{
    double x = PermissionRequirementRowStyle::tile + PermissionRequirementRowStyle::gap;
    double room = std::max(0.0, width - x);
    Layout layout;
    layout.tile = {0, 0, PermissionRequirementRowStyle::tile, PermissionRequirementRowStyle::tile};
    double badge = m_badge->idealWidth();
    double titleHeight = std::max(StatusBadge::kHeight, std::ceil(m_title->heightFor(room)));
    layout.title
        = {x, 0, std::max(0.0, room - badge - PermissionRequirementRowStyle::gap), titleHeight};
    layout.badge = {width - badge, std::round((titleHeight - StatusBadge::kHeight) / 2), badge,
        StatusBadge::kHeight};
    layout.description = {x, titleHeight, room, std::ceil(m_description->heightFor(room))};
    layout.help = {x, layout.description.maxY() + PermissionRequirementRowStyle::lineGap, room,
        std::ceil(m_help->heightFor(room))};
    double y = layout.help.maxY() + PermissionRequirementRowStyle::gap;
    layout.request = {x, y, m_request->idealWidth(), PermissionRequirementRowStyle::buttonHeight};
    layout.openSettings = {layout.request.maxX() + PermissionRequirementRowStyle::buttonGap, y,
        m_openSettings->idealWidth(), PermissionRequirementRowStyle::buttonHeight};
    layout.height = y + PermissionRequirementRowStyle::buttonHeight;
    return layout;
}

double PermissionRequirementRow::heightFor(double width) const
{
    return layoutFor(width).height;
}

void PermissionRequirementRow::appearanceDidChange(bool isRightToLeft)
{
    m_isRightToLeft = isRightToLeft;
    for (auto* label : {m_title, m_description, m_help})
        label->measureAgain();
    m_badge->setRightToLeft(isRightToLeft);
    layout();
}

void PermissionRequirementRow::layout()
{
    auto place = [this](const Rect& rect) {
        return m_isRightToLeft ? mirrored(rect, bounds().width) : rect;
    };
    auto now = layoutFor(bounds().width);
    m_tile = place(now.tile);
    m_title->setFrame(place(now.title));
    m_badge->setFrame(place(now.badge));
    m_description->setFrame(place(now.description));
    m_help->setFrame(place(now.help));
    m_request->setFrame(place(now.request));
    m_openSettings->setFrame(place(now.openSettings));
}

void PermissionRequirementRow::paint(Canvas& canvas) const
{
    canvas.fillRounded(m_tile, PermissionRequirementRowStyle::tileRadius, m_palette.accentFill);
    canvas.drawSymbol(m_requirement.icon,
        m_tile.centred(
            {PermissionRequirementRowStyle::symbol, PermissionRequirementRowStyle::symbol}),
        m_palette.accent);
}

}
