// The window that a full-screen space belongs to.

#include <algorithm>
#include <tuple>

#include "Quorvel/Skylight/WindowStore.h"

namespace quorvel {

namespace {

std::vector<WindowID> uniquePreservingOrder(const std::vector<WindowID>& ids)
{
    std::vector<WindowID> unique;
    std::set<WindowID> seen;
    for (auto id : ids) {
        if (seen.insert(id).second)
            unique.push_back(id);
    }
    return unique;
}

std::optional<ProcessID> ownerOf(WindowID id, const WindowScanner::Moment& moment)
{
    for (auto& [pid, windows] : moment.windowsByOwner) {
        for (auto& window : windows) {
            if (window.windowNumber == id)
                return pid;
        }
    }
    return {};
}

}

std::optional<WindowID> WindowStore::trackSoleWindow(SpaceID space)
{
    AXCalls::Scan hungOnlyOnce(m_scanner.calls());
    auto listed = m_windowServer.windowsOfSpaces({space}, kSpaceWindowOptions);
    auto moment = m_scanner.lookAtAll();
    ScansByPID scans;
    std::vector<WindowID> candidates;
    bool hasChanged = false;
    for (auto id : uniquePreservingOrder(listed.value_or(std::vector<WindowID>{}))) {
        if (trackOnSpace(id, space, moment, scans, hasChanged))
            candidates.push_back(id);
    }
    auto best = bestActivationCandidate(candidates);
    if (hasChanged)
        onChange();
    return best;
}

bool WindowStore::trackOnSpace(WindowID id, SpaceID space, const WindowScanner::Moment& moment,
    ScansByPID& scans, bool& hasChanged)
{
    auto pid = ownerOf(id, moment);
    if (!pid)
        return false;
    if (!scans.contains(*pid))
        scans.emplace(*pid, m_scanner.scan(*pid, moment));
    auto& found = scans.at(*pid);
    auto candidate = found.candidates.find(id);
    // An application need not show its windows of a space that is not in front.
    if (candidate == found.candidates.end())
        return tracked(id) && found.softlyRejectedWindowIDs.contains(id);
    auto& spaces = candidate->second.spaces;
    spaces = m_scanner.querySpaces(id);
    if (spaces.empty())
        spaces = {space}; // where it was found
    if (auto* window = tracked(id)) {
        hasChanged |= updateTracked(*window, *pid, candidate->second);
        m_reconcileStateByWindowID.insert_or_assign(id, Active{});
    } else {
        track(id, *pid, candidate->second);
        onObservationNeeded(*pid);
        hasChanged = true;
    }
    return true;
}

std::optional<WindowID> WindowStore::bestActivationCandidate(
    const std::vector<WindowID>& candidates) const
{
    // A minimised window is on the space only in name.
    auto rank = [this](WindowID id) {
        auto& window = m_windows.at(id);
        return std::tuple{!window.isMinimized, window.frame.area(), !window.windowTitle.empty()};
    };
    auto best = std::max_element(candidates.begin(), candidates.end(),
        [&](WindowID a, WindowID b) { return rank(a) < rank(b); });
    return best == candidates.end() ? std::nullopt : std::optional{*best};
}

}
