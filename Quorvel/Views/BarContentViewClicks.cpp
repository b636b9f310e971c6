#include "Quorvel/Views/BarContentView.h"

#include <algorithm>
#include <utility>

#include "Quorvel/Core/NewWindow.h"
#include "Quorvel/Core/NumberKeys.h"
#include "Quorvel/Core/UserSettings.h"
#include "Quorvel/Views/ChipMenu.h"
#include "Quorvel/Views/ChipsRow.h"

namespace quorvel {

namespace {

/// As it is typed, or else as the key of a row of numbers that types something else.
std::optional<std::size_t> numberOf(const KeyEvent& event)
{
    if (event.has(KeyModifier::control) || event.has(KeyModifier::option)
        || event.has(KeyModifier::command))
        return {};
    auto& typed = event.characters;
    if (typed.size() == 1 && typed[0] >= '1' && typed[0] <= '9')
        return static_cast<std::size_t>(typed[0] - '0');
    auto key = std::ranges::find(NumberKeys::kKeyCodes, static_cast<std::uint32_t>(event.keyCode));
    if (key == NumberKeys::kKeyCodes.end())
        return {};
    return static_cast<std::size_t>(key - NumberKeys::kKeyCodes.begin()) + 1;
}

/// Of a group, the one that stands for it.
WindowID firstWindow(const DisplayItem& item)
{
    auto* group = std::get_if<GroupedChipData>(&item);
    return group ? group->windowIDs.front() : std::get<ChipData>(item).id;
}

}

void BarContentView::onNextTurn(std::function<void(BarViewModel&)> action)
{
    // The view may be made anew before that.
    m_inputs.platform.dispatch.main().async(
        [weak = m_inputs.viewModel.weakReference(), action = std::move(action)] {
            if (auto* viewModel = weak.get())
                action(*viewModel);
        });
}

/// Whoever uses a chip has seen it.
void BarContentView::keepPopupAway(const ChipView& chip)
{
    if (chip.isHovered())
        m_popups.suppress(chip.item());
}

void BarContentView::chipClicked(const ChipView& chip)
{
    keepPopupAway(chip);
    if (auto* single = std::get_if<ChipData>(&chip.item()))
        handlePrimaryChipTap(single->id, single->isFocused);
    else
        handleGroupedChipTap(std::get<GroupedChipData>(chip.item()));
}

void BarContentView::openChipMenu(const ChipView& chip)
{
    keepPopupAway(chip);
    openMenu(chipMenu(chip.item(), menuContext(host() ? host()->menuModifiers() : 0)),
        chip.frameInRoot(), displayItemID(chip.item()));
}

void BarContentView::closeChip(const ChipView& chip)
{
    keepPopupAway(chip);
    dismissThumbnailPopupImmediate();
    onNextTurn(
        [id = firstWindow(chip.item())](BarViewModel& viewModel) { viewModel.closeWindow(id); });
}

void BarContentView::handlePrimaryChipTap(WindowID id, bool isFocused)
{
    dismissThumbnailPopupImmediate();
    onNextTurn([id, isFocused](BarViewModel& viewModel) {
        if (isFocused)
            viewModel.minimizeWindow(id);
        else
            viewModel.activateWindow(id, BarViewModel::FocusBeforeActivation::no);
    });
}

void BarContentView::handleGroupedChipTap(const GroupedChipData& group)
{
    activateWindowDeferred(m_inputs.viewModel.nextWindow(m_inputs.spaceID, group));
}

void BarContentView::activateWindowDeferred(WindowID id)
{
    handlePrimaryChipTap(id, false);
}

void BarContentView::filesOverChip(const ChipView& chip, bool areOver)
{
    m_springTimer = {};
    if (!areOver)
        return;
    m_springTimer = m_inputs.platform.dispatch.main().after(
        kSpringDelay, [this, id = firstWindow(chip.item())] { activateWindowDeferred(id); });
}

void BarContentView::useItem(std::size_t place, ItemUse use)
{
    auto* item = m_row->itemAt(place);
    if (!item)
        return;
    if (use == ItemUse::click)
        return void(item->performAccessibleAction(0));
    if (auto bundleID = item->bundleID(); !bundleID.empty())
        openNewWindow(m_inputs.platform.workspace, bundleID);
}

void BarContentView::setShowsNumbers(bool showsNumbers)
{
    m_row->setShowsNumbers(showsNumbers);
    m_isWalked = showsNumbers;
    updateFollowing();
}

bool BarContentView::keyPressed(const KeyEvent& event)
{
    if (popupKeyPressed(event))
        return true;
    auto number = numberOf(event);
    if (!number || !m_row->itemAt(*number - 1))
        return false;
    m_inputs.surface.releaseKeyboard();
    useItem(*number - 1, event.has(KeyModifier::shift) ? ItemUse::openNewWindow : ItemUse::click);
    return true;
}

void BarContentView::openWindowMenu(WindowID id, const Rect& onScreen, std::uint64_t modifiers)
{
    auto* chip = findChip(m_inputs.viewModel.chipsBySpace.value(), m_inputs.spaceID, id);
    if (!chip)
        return;
    auto panel = m_inputs.surface.frame();
    openMenu(chipMenu(*chip, menuContext(modifiers)),
        {onScreen.x - panel.x, panel.maxY() - onScreen.maxY(), onScreen.width, onScreen.height}, {},
        ThumbnailHover::OpenMenu::ofCard);
}

bool BarContentView::popupKeyPressed(const KeyEvent& event)
{
    auto card = m_popups.keyCard();
    if (!card) {
        auto* chip = event.keyCode == KeyCode::up ? m_row->keyFocusedChip() : nullptr;
        if (!chip || !m_inputs.settings.showsWindowPreviews() || !m_popups.takeKeys(chip->item()))
            return false;
        chip->setKeyFocused(false);
        return true;
    }
    if (event.asksForMenu()) {
        m_inputs.surface.releaseKeyboard();
        openWindowMenu(card->first, card->second, event.modifiers);
        return true;
    }
    if (m_popups.walk(event))
        return true;
    switch (event.keyCode) {
    case KeyCode::escape:
    case KeyCode::down:
        returnKeysToChip();
        return true;
    case KeyCode::enter:
    case KeyCode::keypadEnter:
    case KeyCode::space:
        m_inputs.surface.releaseKeyboard();
        activateWindowDeferred(card->first);
        return true;
    case KeyCode::forwardDelete:
    case KeyCode::backspace:
        onNextTurn([id = card->first](BarViewModel& viewModel) { viewModel.closeWindow(id); });
        return true;
    default:
        return false;
    }
}

void BarContentView::returnKeysToChip()
{
    auto id = m_popups.chipID();
    m_popups.dismiss();
    auto* chip = id ? m_row->chip(*id) : nullptr;
    if (chip)
        chip->takeAccessibleFocus();
}

void BarContentView::keyboardDidLeave()
{
    if (m_popups.keyCard())
        m_popups.dismiss();
}

}
