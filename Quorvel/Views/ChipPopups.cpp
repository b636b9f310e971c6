#include "Quorvel/Views/ChipPopups.h"

#include <algorithm>
#include <utility>

#include "Quorvel/Core/ThumbnailService.h"
#include "Quorvel/Platform/Platform.h"

namespace quorvel {

ChipPopups::ChipPopups(Inputs inputs)
    : m_inputs(std::move(inputs))
    , m_hover(m_inputs.platform.dispatch, m_inputs.platform.surfaces)
    , m_presenter(m_inputs.platform, m_inputs.thumbnailService, m_inputs.display)
{
    m_hover.onPrefetch
        = [this](const HoverTarget& target) { m_inputs.thumbnailService.prefetch(target.windows); };
    m_hover.onShow = [this](const HoverTarget& target) { show(target.chipID); };
    m_hover.onDismiss = [this] { m_presenter.hide(); };
    m_presenter.onWillShow = [this] {
        if (onWillShow)
            onWillShow();
    };
    m_presenter.onHoverChanged = [this](bool isHovered) { m_hover.setPopupHovered(isHovered); };
    m_presenter.onWindowChosen = [this](WindowID id) { onWindowChosen(id); };
    m_presenter.onWindowClosed = [this](WindowID id) { onWindowClosed(id); };
}

HoverTarget ChipPopups::target(const DisplayItem& item) const
{
    if (auto* group = std::get_if<GroupedChipData>(&item))
        return {HoverTarget::Kind::group, group->id,
            walkingOrder(m_inputs.viewModel.chipsBySpace.value(), m_inputs.spaceID, *group)};
    return {HoverTarget::Kind::single, displayItemID(item), {std::get<ChipData>(item).id}};
}

void ChipPopups::chipHovered(const DisplayItem& item, bool isHovered)
{
    m_hover.handleChipHover(isHovered, target(item));
}

std::optional<ChipPopups::Contents> ChipPopups::contents(const std::string& chipID) const
{
    auto items = m_inputs.viewModel.displayItems(m_inputs.spaceID, m_inputs.screenIndex);
    auto item = std::ranges::find_if(items, [&](auto& i) { return displayItemID(i) == chipID; });
    auto frame = m_inputs.chipFrame(chipID);
    if (item == items.end() || !frame)
        return {};
    Contents contents{.windows = {}, .chip = *frame};
    for (auto id : target(*item).windows) {
        if (auto* chip = findChip(m_inputs.viewModel.chipsBySpace.value(), m_inputs.spaceID, id))
            contents.windows.push_back(*chip);
    }
    return contents;
}

void ChipPopups::show(const std::string& chipID)
{
    auto now = contents(chipID);
    if (!now || !m_presenter.show(now->windows, now->chip))
        dismiss();
}

void ChipPopups::update()
{
    auto chipID = m_hover.thumbnailTargetID();
    if (!m_presenter.popup() || !chipID)
        return;
    auto now = contents(*chipID);
    if (!now)
        return m_hover.targetDidVanish();
    if (!m_presenter.update(now->windows, now->chip))
        show(*chipID);
}

}
