#pragma once

#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "Quorvel/Core/AttentionLedger.h"
#include "Quorvel/Core/LSAppInfoOutput.h"
#include "Quorvel/Platform/Dispatch.h"
#include "Quorvel/Platform/LaunchServices.h"
#include "Quorvel/Platform/Published.h"
#include "Quorvel/Platform/Trace.h"
#include "Quorvel/Platform/WeakOwner.h"

namespace quorvel {

/// Badges and requests for attention of running applications, by bundle identifier.
///
/// Systems report changes rarely or never, so it polls every few seconds, on a serial queue of its
/// own where the answers may take their time. A failure leaves its part empty until the next poll.
/// Public operations and published values on the main thread.
class BadgeService {
public:
    static constexpr Duration firstPollDelay = seconds(0.5);
    static constexpr Duration pollInterval = seconds(7.0);
    static constexpr Duration pollLeeway = seconds(2.0);
    /// The minimum time between polls that the system's hints cause.
    static constexpr Duration hintedPollInterval = seconds(0.1);
    static constexpr std::string_view lsappinfoPath = "/usr/bin/lsappinfo";

    BadgeService(Dispatch&, LaunchServices&, const Trace&);
    /// Waits for a poll that is running.
    ~BadgeService();

    /// The running program's instance. Use only where the program is wired together.
    static BadgeService& shared();

    /// Starts polling, if it has not started yet.
    void start();
    /// The user has come to the application: its request is withdrawn and not shown. If its windows
    /// ask separately, this answers only those without a chip.
    void clearAttention(const std::string& bundleID, std::set<WindowID> windowsWithChip);
    /// The user has come to the window.
    void clearAttention(WindowID);

    /// Labels, without the empty ones.
    const Published<std::map<std::string, std::string>>& badgesByBundleID() const
    {
        return m_badgesByBundleID;
    }
    const Published<std::set<std::string>>& attentionByBundleID() const
    {
        return m_attentionByBundleID;
    }
    /// For applications that name windows, the windows; for the others, none.
    const Published<std::set<WindowID>>& attentionWindows() const { return m_attentionWindows; }
    /// From 0 to 1.
    const Published<std::map<std::string, double>>& progressByBundleID() const
    {
        return m_progressByBundleID;
    }

private:
    struct LSAppInfoResult {
        std::vector<std::string> arguments;
        std::int32_t exitStatus = 0;
        std::string standardOutput;
        std::string standardError;
        std::optional<std::int64_t> errCode;
    };
    struct Poll {
        std::map<std::string, std::string> badges;
        std::map<std::string, double> progress;
        std::vector<AttentionLedger::Suppressed> suppressed;
        std::set<std::string> attention;
        std::set<WindowID> attentionWindows;

        friend bool operator==(const Poll&, const Poll&) = default;
    };

    // On the queue.
    void fetchAndPublish();
    void fetchStatuses(Poll&) const;
    std::vector<AttentionLedger::Suppressed> fetchAttention(
        const std::vector<AppRecord>&, Instant now);
    std::vector<AppRecord> fetchRecords() const;
    std::optional<LSAppInfoResult> runLSAppInfo(std::vector<std::string> arguments) const;
    void clearAttentionOnQueue(
        const std::string& bundleID, const std::set<WindowID>& windowsWithChip);
    void clearWantsAttentionViaLSAppInfo(const std::string& bundleID);
    bool setWantsNoAttention(const std::string& application);
    void publishAttention();

    // On the main thread.
    void pollOnHint();
    void traceSuppressed(const std::vector<AttentionLedger::Suppressed>&) const;
    void traceSetInfo(const LSAppInfoResult&) const;
    template <typename Function> void onMain(Function);

    Dispatch& m_dispatch;
    LaunchServices& m_launchServices;
    const Trace& m_trace;
    Published<std::map<std::string, std::string>> m_badgesByBundleID;
    Published<std::set<std::string>> m_attentionByBundleID;
    Published<std::set<WindowID>> m_attentionWindows;
    Published<std::map<std::string, double>> m_progressByBundleID;

    AttentionLedger m_ledger; ///< used on the queue only
    /// What the last poll found, if nothing else has been published since; used on the queue only.
    std::optional<Poll> m_published;
    WorkItem m_timerSource; ///< used on the queue only
    bool m_isStarted = false;
    Instant m_lastHintedPoll;
    WorkItem m_firstPoll;
    WorkItem m_hintedPoll;
    Subscription m_hints;
    WeakOwner<BadgeService> m_weak{*this};
    std::unique_ptr<Queue> m_queue; ///< last: it is drained before what its work uses goes
};

}
