#include "Quorvel/Core/AttentionLedger.h"

#include <algorithm>

namespace quorvel {

std::vector<AttentionLedger::Suppressed> AttentionLedger::update(const std::set<std::string>& raw,
    const std::set<std::string>& runningBundleIDs, std::vector<AttentionRequest> requests,
    Instant now)
{
    m_requests = std::move(requests);
    m_lastRawAttentionByBundleID = raw;
    std::set<WindowID> asking;
    for (auto& request : m_requests) {
        asking.insert(request.window);
        m_lastRawAttentionByBundleID.erase(request.bundleIdentifier);
    }
    std::erase_if(m_acknowledgedWindows, [&](WindowID id) { return !asking.contains(id); });

    auto suppressed = computeShown(now);
    for (auto& [bundleID, at] : m_acknowledgedBundleIDs) {
        if (!m_lastRawAttentionByBundleID.contains(bundleID))
            m_seenFalseAfterAck.insert(bundleID);
    }
    std::erase_if(m_acknowledgedBundleIDs,
        [&](const auto& entry) { return !runningBundleIDs.contains(entry.first); });
    std::erase_if(m_seenFalseAfterAck,
        [&](const std::string& bundleID) { return !m_acknowledgedBundleIDs.contains(bundleID); });
    return suppressed;
}

std::vector<AttentionLedger::Suppressed> AttentionLedger::computeShown(Instant now)
{
    std::vector<Suppressed> suppressed;
    m_lastComputedAttentionByBundleID.clear();
    for (auto& bundleID : m_lastRawAttentionByBundleID) {
        const auto acknowledged = m_acknowledgedBundleIDs.find(bundleID);
        const bool isAcknowledged = acknowledged != m_acknowledgedBundleIDs.end();
        if (isAcknowledged && !m_seenFalseAfterAck.contains(bundleID)) {
            suppressed.push_back({bundleID, now - acknowledged->second});
            continue;
        }
        if (isAcknowledged)
            m_acknowledgedBundleIDs.erase(acknowledged);
        m_seenFalseAfterAck.erase(bundleID);
        m_lastComputedAttentionByBundleID.insert(bundleID);
    }
    return suppressed;
}

void AttentionLedger::acknowledge(const std::string& bundleID, Instant now)
{
    m_acknowledgedBundleIDs[bundleID] = now;
    m_seenFalseAfterAck.erase(bundleID);
    m_lastComputedAttentionByBundleID.erase(bundleID);
}

void AttentionLedger::acknowledge(WindowID id)
{
    // A window that is not known to ask may do so before it is next looked at.
    if (std::ranges::count(m_requests, id, &AttentionRequest::window) > 0)
        m_acknowledgedWindows.insert(id);
}

std::set<std::string> AttentionLedger::attentionByBundleID() const
{
    auto shown = m_lastComputedAttentionByBundleID;
    for (auto& request : m_requests) {
        if (!m_acknowledgedWindows.contains(request.window))
            shown.insert(request.bundleIdentifier);
    }
    return shown;
}

std::set<WindowID> AttentionLedger::attentionWindows() const
{
    std::set<WindowID> shown;
    for (auto& request : m_requests) {
        if (!m_acknowledgedWindows.contains(request.window))
            shown.insert(request.window);
    }
    return shown;
}

}
