#include "Quorvel/Core/LaunchMarks.h"

#include <algorithm>

#include "Quorvel/Core/BarViewModel.h"
#include "Quorvel/Platform/Workspace.h"

namespace quorvel {

LaunchMarks::LaunchMarks(const BarViewModel& viewModel, const Workspace& workspace, Queue& main)
    : m_viewModel(viewModel)
    , m_main(main)
{
    m_subscriptions.push_back(workspace.launchDidBegin.subscribe([this](auto& launch) {
        if (launch.bundleIdentifier && !hasWindows(*launch.bundleIdentifier))
            mark(*launch.bundleIdentifier);
    }));
    m_subscriptions.push_back(workspace.launchDidFail.subscribe([this](auto& launch) {
        if (launch.bundleIdentifier)
            unmark(*launch.bundleIdentifier);
    }));
    m_subscriptions.push_back(
        viewModel.summaries.subscribe([this](auto&) { unmarkThoseWithWindows(); }));
}

bool LaunchMarks::contains(const std::string& bundleID) const
{
    return std::ranges::find(m_launching.value(), bundleID) != m_launching.value().end();
}

bool LaunchMarks::hasWindows(const std::string& bundleID) const
{
    return std::ranges::any_of(m_viewModel.summaries.value(),
        [&](auto& entry) { return entry.second.bundleIDs.contains(bundleID); });
}

void LaunchMarks::mark(const std::string& bundleID)
{
    m_ends[bundleID] = m_main.after(kPatience, [this, bundleID] { unmark(bundleID); });
    if (contains(bundleID))
        return;
    m_launching.update([&](auto& launching) {
        launching.push_back(bundleID);
        return true;
    });
}

void LaunchMarks::unmark(const std::string& bundleID)
{
    m_ends.erase(bundleID);
    m_launching.update([&](auto& launching) { return std::erase(launching, bundleID) > 0; });
}

void LaunchMarks::unmarkThoseWithWindows()
{
    for (auto& bundleID : std::vector{m_launching.value()}) {
        if (hasWindows(bundleID))
            unmark(bundleID);
    }
}

}
