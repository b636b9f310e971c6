// The popups above the chips of a bar.
#include "Quorvel/Views/BarContentView.h"

#include <algorithm>

#include "Quorvel/Core/ThumbnailService.h"
#include "Quorvel/Views/ChipsRow.h"

namespace quorvel {

HoverTarget BarContentView::hoverTarget(const DisplayItem& item) const
{
    if (auto* group = std::get_if<GroupedChipData>(&item))
        return {HoverTarget::Kind::group, group->id,
            m_inputs.viewModel.walkingOrder(m_inputs.spaceID, *group)};
    return {HoverTarget::Kind::single, displayItemID(item), {std::get<ChipData>(item).id}};
}

void BarContentView::chipHovered(const ChipView& chip, bool isHovered)
{
    m_hover.handleChipHover(isHovered, hoverTarget(chip.item()));
}

void BarContentView::prefetchThumbnails(const HoverTarget& target)
{
    m_inputs.thumbnailService.prefetch(target.windows);
}

std::vector<ChipData> BarContentView::chips(const std::vector<WindowID>& ids) const
{
    std::vector<ChipData> chips;
    for (auto id : ids) {
        if (auto* chip = m_inputs.viewModel.chip(m_inputs.spaceID, id))
            chips.push_back(*chip);
    }
    return chips;
}

std::optional<BarContentView::PopupContents> BarContentView::popupContents(
    const std::string& chipID) const
{
    auto items = m_inputs.viewModel.displayItems(m_inputs.spaceID, m_inputs.screenIndex);
    auto item = std::ranges::find_if(items, [&](auto& i) { return displayItemID(i) == chipID; });
    auto frames = chipFrames();
    auto frame = std::ranges::find(frames, chipID, &std::pair<std::string, Rect>::first);
    if (item == items.end() || frame == frames.end())
        return {};
    return PopupContents{chips(hoverTarget(*item).windows), onScreen(frame->second)};
}

void BarContentView::showThumbnailPopup(const std::string& chipID)
{
    auto contents = popupContents(chipID);
    if (!contents || !m_popups.show(contents->windows, contents->chip))
        dismissThumbnailPopupImmediate();
}

void BarContentView::updateThumbnailPopup()
{
    auto chipID = m_hover.thumbnailTargetID();
    if (!m_popups.popup() || !chipID)
        return;
    auto contents = popupContents(*chipID);
    if (!contents)
        return m_hover.targetDidVanish();
    if (!m_popups.update(contents->windows, contents->chip))
        showThumbnailPopup(*chipID);
}

void BarContentView::dismissThumbnailPopupImmediate()
{
    m_hover.dismissThumbnailPopupImmediate();
}

}
