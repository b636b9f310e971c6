#pragma once

#include <optional>
#include <set>
#include <string_view>

#include "Quorvel/Platform/Dispatch.h"
#include "Quorvel/Platform/Identifiers.h"

namespace quorvel {

enum class PIDLifecyclePhase { launching, runningUnobserved, runningObserved };
std::string_view rawValue(PIDLifecyclePhase);

/// The polling of one process while it settles, or as long as it cannot be observed.
struct PIDLifecycleState {
    PIDLifecyclePhase phase = PIDLifecyclePhase::launching;
    Instant startedAt;
    bool observerAttached = false;
    Duration nextInterval{};
    int stableScans = 0;
    std::set<WindowID> lastTrackedWindowIDs;
    Instant nextTickAt;
};

/// Three looks in succession, for windows that are expected or unexplained.
struct DeferredScanBurst {
    Instant startedAt;
    int scansDone = 0;
    bool isRequestedAgain = false;
    bool hasNewRiddles = false; ///< its last scan met what its first did not
    /// It was begun for such riddles, and begins no other: they may come and go without end.
    bool isSequel = false;
    /// What every scan since the start of the burst has left unexplained.
    std::optional<std::set<WindowID>> sought;

    bool hasScannedLast() const;
    /// The next scan, or the end after the last one.
    Instant nextAt() const;
};

/// The repeated look at a process that did not answer, at growing intervals.
struct UnansweredFollowUp {
    Duration delay{};
    std::optional<Instant> at; ///< absent while that look is in progress
};

/// What the window store knows about one process besides its windows: whether it is observed, and
/// when and why it is to be looked at next.
struct ProcessRecord {
    bool isObserverAttached = false;
    std::optional<PIDLifecycleState> lifecycle;
    std::optional<DeferredScanBurst> burst;
    std::optional<Instant> missingFollowUpAt;
    std::optional<UnansweredFollowUp> unanswered;
    /// Windows that a whole burst could not explain: a mere tick does not start another burst for
    /// them.
    std::set<WindowID> soughtInVain;

    /// The reasons to look that are due; one look serves them all.
    struct Due {
        bool burstScan = false;
        bool burstEnd = false;
        bool tick = false;
        bool missing = false;
        bool unanswered = false;

        bool needsScan() const { return burstScan || tick || missing || unanswered; }
    };
    Due due(Instant now) const;
    /// Absent if there is no reason to look again.
    std::optional<Instant> nextLook() const;
    bool isBlank() const;
};

}
