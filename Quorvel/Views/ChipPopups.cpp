#include "Quorvel/Views/ChipPopups.h"

#include <algorithm>
#include <utility>

#include "Quorvel/Core/ThumbnailService.h"
#include "Quorvel/Platform/Platform.h"
#include "Quorvel/Views/ThumbnailPopup.h"

namespace quorvel {

ChipPopups::ChipPopups(Inputs inputs)
    : m_inputs(std::move(inputs))
    , m_hover(m_inputs.platform.dispatch, m_inputs.platform.surfaces)
    , m_presenter(m_inputs.platform, m_inputs.thumbnailService, m_inputs.display)
{
    m_hover.onPrefetch
        = [this](const HoverTarget& target) { m_inputs.thumbnailService.prefetch(target.windows); };
    m_hover.onShow = [this](const HoverTarget& target) { show(target.chipID); };
    m_hover.onDismiss = [this] {
        m_presenter.hide();
        chipDidChange();
    };
    m_presenter.onWillShow = [this] {
        if (onWillShow)
            onWillShow();
    };
    m_presenter.onHoverChanged = [this](bool isHovered) {
        m_hover.setPopupHovered(isHovered);
        if (!isHovered)
            update(); // it held still
    };
    m_presenter.onMenuRequested
        = [this](WindowID id, const Rect& place) { onMenuRequested(id, place); };
    m_presenter.onWindowChosen = [this](WindowID id) { onWindowChosen(id); };
    m_presenter.onWindowClosed = [this](WindowID id) { onWindowClosed(id); };
}

HoverTarget ChipPopups::target(const DisplayItem& item) const
{
    if (auto* group = std::get_if<GroupedChipData>(&item))
        return {HoverTarget::Kind::group, group->id,
            m_inputs.viewModel.walkingOrder(m_inputs.spaceID, *group)};
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
        return dismiss();
    chipDidChange();
}

void ChipPopups::chipDidChange() const
{
    if (onChipChanged)
        onChipChanged();
}

void ChipPopups::update()
{
    auto chipID = m_hover.thumbnailTargetID();
    if (!m_presenter.popup() || !chipID)
        return;
    auto now = contents(*chipID);
    if (!now) {
        chipID = successor();
        now = chipID ? contents(*chipID) : std::nullopt;
        if (!now)
            return m_hover.targetDidVanish();
        m_hover.targetDidBecome(*chipID);
        chipDidChange();
    }
    if (!m_presenter.update(now->windows, now->chip))
        show(*chipID);
}

/// Windows become a group, or one remains of it.
std::optional<std::string> ChipPopups::successor() const
{
    auto places = m_presenter.popup()->cardPlaces();
    for (auto& item : m_inputs.viewModel.displayItems(m_inputs.spaceID, m_inputs.screenIndex)) {
        auto windows = target(item).windows;
        bool isShown = std::ranges::any_of(places,
            [&](auto& place) { return std::ranges::find(windows, place.window) != windows.end(); });
        if (isShown)
            return displayItemID(item);
    }
    return {};
}

// MARK: The keyboard

bool ChipPopups::takeKeys(const DisplayItem& item)
{
    m_hover.openForKeyboard(target(item));
    if (auto* popup = m_presenter.popup())
        popup->takeKeys();
    return keyCard().has_value();
}

bool ChipPopups::walk(const KeyEvent& event)
{
    return m_presenter.popup() && m_presenter.popup()->walk(event);
}

std::optional<std::pair<WindowID, Rect>> ChipPopups::keyCard() const
{
    auto card = m_presenter.popup() ? m_presenter.popup()->keyCard() : std::nullopt;
    if (!card)
        return {};
    return std::pair{card->window, card->frame};
}

}
