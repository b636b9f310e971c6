#include "Quorvel/Core/PinStates.h"

#include <algorithm>

#include "Quorvel/Core/BadgeService.h"
#include "Quorvel/Core/BarViewModel.h"

namespace quorvel {

namespace {

template <typename Value>
std::optional<Value> valueIn(const std::map<std::string, Value>& map, const std::string& key)
{
    auto found = map.find(key);
    return found == map.end() ? std::nullopt : std::optional{found->second};
}

}

PinStates::PinStates(const WindowFinder& windowFinder, const BadgeService& badgeService)
    : m_windowFinder(windowFinder)
    , m_badgeService(badgeService)
{
    auto follow = [this](auto& published) {
        m_subscriptions.push_back(published.subscribe([this](auto&) { didChange.emit(); }));
    };
    follow(windowFinder.viewModel().summaries);
    follow(badgeService.badgesByBundleID());
    follow(badgeService.progressByBundleID());
    follow(badgeService.attentionByBundleID());
    follow(badgeService.attentionWindows());
}

PinState PinStates::state(const std::string& bundleID) const
{
    auto& summaries = m_windowFinder.viewModel().summaries.value();
    return {std::ranges::any_of(
                summaries, [&](auto& space) { return space.second.bundleIDs.contains(bundleID); }),
        valueIn(m_badgeService.badgesByBundleID().value(), bundleID),
        valueIn(m_badgeService.progressByBundleID().value(), bundleID), wantsAttention(bundleID)};
}

/// Not as the chips say, which follow a moment later.
bool PinStates::wantsAttention(const std::string& bundleID) const
{
    if (m_badgeService.attentionByBundleID().value().contains(bundleID))
        return true;
    auto& asking = m_badgeService.attentionWindows().value();
    if (asking.empty())
        return false;
    return std::ranges::any_of(m_windowFinder.viewModel().chipsBySpace.value(), [&](auto& space) {
        return std::ranges::any_of(space.second, [&](auto& chip) {
            return chip.bundleIdentifier == bundleID && asking.contains(chip.id);
        });
    });
}

std::vector<FoundWindow> PinStates::windows(const std::string& bundleID) const
{
    auto windows = m_windowFinder.windows();
    std::erase_if(windows, [&](auto& window) { return window.chip.bundleIdentifier != bundleID; });
    std::ranges::stable_partition(windows, [](auto& window) { return window.chip.wantsAttention; });
    return windows;
}

}
