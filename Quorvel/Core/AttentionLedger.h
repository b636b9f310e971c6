#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

#include "Quorvel/Platform/Dispatch.h"
#include "Quorvel/Platform/LaunchServices.h"

namespace quorvel {

/// Which requests for attention are to be shown, given what the user has acknowledged.
///
/// Applications often keep a request up long after the user has dealt with it. So an acknowledged
/// request stays hidden until it has been withdrawn and then made again, or until the application
/// has quit. Where the system names the windows that ask, each window is treated separately, and
/// the application as a whole is neither shown nor acknowledged.
class AttentionLedger {
public:
    struct Suppressed {
        std::string bundleID;
        Duration age{}; ///< since the acknowledgement

        friend bool operator==(const Suppressed&, const Suppressed&) = default;
    };

    /// Takes the current requests and running applications. Returns the acknowledged requests that
    /// stay hidden, in order.
    std::vector<Suppressed> update(const std::set<std::string>& raw,
        const std::set<std::string>& runningBundleIDs, std::vector<AttentionRequest>, Instant now);
    void acknowledge(const std::string& bundleID, Instant now);
    void acknowledge(WindowID);

    std::set<std::string> attentionByBundleID() const;
    std::set<WindowID> attentionWindows() const;

private:
    std::vector<Suppressed> computeShown(Instant now);

    std::set<std::string> m_lastRawAttentionByBundleID; ///< without those that name windows
    std::set<std::string> m_lastComputedAttentionByBundleID;
    std::map<std::string, Instant> m_acknowledgedBundleIDs;
    std::set<std::string> m_seenFalseAfterAck; ///< acknowledged, and withdrawn since
    std::vector<AttentionRequest> m_requests;
    std::set<WindowID> m_acknowledgedWindows; ///< they are all still asking
};

}
