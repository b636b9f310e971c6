// The pins of a bar: what they show, and what becomes of them.

#include "Quorvel/Views/BarContentView.h"

#include <algorithm>
#include <functional>
#include <utility>

#include "Quorvel/Core/LaunchMarks.h"
#include "Quorvel/Core/PinStates.h"
#include "Quorvel/Core/PinStore.h"
#include "Quorvel/Platform/Translation.h"
#include "Quorvel/Platform/Workspace.h"
#include "Quorvel/Views/ChipMenu.h"
#include "Quorvel/Views/ChipsRow.h"

namespace quorvel {

void BarContentView::connectPins()
{
    m_row->onPin.clicked = [this](const PinView& pin) { pinTapped(pin.pin().bundleID); };
    m_row->onPin.menuRequested = [this](const PinView& pin) {
        auto& id = pin.pin().bundleID;
        openMenu(pinMenu(id, menuContext()), pin.frameInRoot(), id);
    };
    m_row->onPin.filesDropped = [this](const PinView& pin, const std::vector<std::string>& paths) {
        if (auto url = m_inputs.platform.workspace.applicationURL(pin.pin().bundleID))
            m_inputs.platform.workspace.openFiles(paths, *url);
    };
    m_row->onPin.moved = [this](const std::string& bundleID, const ReorderDrag& drag) {
        pinMoved(bundleID, drag);
    };
    m_row->onPin.removed = [this](const PinView& pin) { unpin(pin.pin()); };
    m_row->onChip.canPin = [this](const ChipView& chip) {
        auto id = chip.bundleID();
        return !id.empty() && m_inputs.platform.workspace.applicationURL(id);
    };
    m_row->onChip.pinned = [this](const ChipView& chip, const std::optional<std::string>& before) {
        pinChip(chip, before);
    };
}

// MARK: What they show

std::vector<std::string> BarContentView::wantedPins() const
{
    auto wanted = m_inputs.pinStore.pinnedAppIDs(PinDestination::bar);
    if (!wanted.empty()) {
        auto withWindows = m_inputs.viewModel.bundleIDsWithWindows(m_inputs.spaceID);
        std::erase_if(wanted, [&](auto& id) { return withWindows.contains(id); });
    }
    for (auto& id : m_inputs.launchMarks.launching().value()) {
        if (!m_inputs.pinStore.isPinned(id, PinDestination::bar))
            wanted.push_back(id);
    }
    return wanted;
}

/// Names and icons are looked up in files: not for each title that changes.
bool BarContentView::arePinsCurrent() const
{
    return std::ranges::equal(wantedPins(), m_pins, {}, {}, &PinData::bundleID);
}

void BarContentView::pinsDidChange()
{
    m_pins.clear();
    for (auto& id : wantedPins()) {
        auto icon = m_inputs.viewModel.icon(id);
        if (!icon)
            icon = m_inputs.platform.workspace.genericApplicationIcon();
        m_pins.push_back({id, m_inputs.viewModel.appName(id), std::move(icon),
            m_inputs.launchMarks.contains(id), m_inputs.pinStates.state(id)});
    }
    m_row->setPins(m_pins);
    m_inputs.surface.accessibleTreeDidChange();
}

void BarContentView::pinStatesDidChange()
{
    bool isOther = false;
    for (auto& pin : m_pins) {
        auto state = m_inputs.pinStates.state(pin.bundleID);
        isOther |= std::exchange(pin.state, state) != state;
    }
    if (!isOther)
        return;
    m_row->setPins(m_pins);
    m_inputs.surface.accessibleTreeDidChange();
}

// MARK: What becomes of them

void BarContentView::pinTapped(const std::string& bundleID)
{
    dismissThumbnailPopupImmediate();
    m_tappedPin = bundleID;
    auto windows = m_inputs.pinStates.windows(bundleID);
    if (!windows.empty() && m_inputs.onWindowRequested) {
        onNextTurn([go = m_inputs.onWindowRequested, id = windows.front().chip.id](
                       BarViewModel&) { go(id); });
        return;
    }
    onNextTurn([bundleID](BarViewModel& viewModel) { viewModel.launchApp(bundleID); });
}

void BarContentView::pinMoved(const std::string& bundleID, const ReorderDrag& drag)
{
    if (!drag.isElsewhere())
        return; // behind the last one means something else than where it is
    auto pinned = m_inputs.pinStore.pinnedAppIDs(PinDestination::bar);
    auto isPinned = [&](auto& id) { return std::ranges::find(pinned, id) != pinned.end(); };
    auto before = drag.dropTargetID(isPinned);
    if (!before) {
        // An application that is being started has a place on the bar without a pin.
        auto visible = drag.previewOrder();
        std::erase_if(visible, std::not_fn(isPinned));
        before = nextPinnedAppIDAfterVisibleEnd(bundleID, visible, pinned);
    }
    m_inputs.pinStore.movePinnedApp(bundleID, before, PinDestination::bar);
}

/// Not before the drag has ended, which the pin's own view reports.
void BarContentView::unpin(const PinData& pin)
{
    if (!m_inputs.pinStore.isPinned(pin.bundleID, PinDestination::bar))
        return;
    showNote(trFormat("{} is no longer pinned", pin.name));
    onNextTurn([&pins = m_inputs.pinStore, id = pin.bundleID](
                   BarViewModel&) { pins.setPin(id, PinDestination::bar, false); });
}

void BarContentView::pinChip(const ChipView& chip, std::optional<std::string> before)
{
    auto& store = m_inputs.pinStore;
    auto id = chip.bundleID();
    if (!store.isPinned(id, PinDestination::bar))
        showNote(trFormat("{} is pinned", m_inputs.viewModel.appName(id)));
    store.setPin(id, PinDestination::bar, true);
    if (!before || !store.isPinned(*before, PinDestination::bar)) {
        auto pinned = store.pinnedAppIDs(PinDestination::bar);
        std::vector<std::string> visible;
        for (auto& pin : m_pins) {
            if (store.isPinned(pin.bundleID, PinDestination::bar))
                visible.push_back(pin.bundleID);
        }
        before = nextPinnedAppIDAfterVisibleEnd(id, visible, std::move(pinned));
    }
    store.movePinnedApp(id, before, PinDestination::bar);
}

}
