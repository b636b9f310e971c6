#include "Quorvel/Skylight/ProcessRecord.h"

#include <algorithm>
#include <array>

namespace quorvel {

namespace {

constexpr std::array<Duration, 3> kBurstScans{seconds(0.3), seconds(0.8), seconds(2.0)};
constexpr Duration kBurstEnd = seconds(2.5);

}

std::string_view rawValue(PIDLifecyclePhase phase)
{
    switch (phase) {
    case PIDLifecyclePhase::launching:
        return "launching";
    case PIDLifecyclePhase::runningUnobserved:
        return "runningUnobserved";
    case PIDLifecyclePhase::runningObserved:
        return "runningObserved";
    }
    return {};
}

bool DeferredScanBurst::hasScannedLast() const
{
    return scansDone >= static_cast<int>(kBurstScans.size());
}

Instant DeferredScanBurst::nextAt() const
{
    return startedAt
        + (hasScannedLast() ? kBurstEnd : kBurstScans[static_cast<std::size_t>(scansDone)]);
}

ProcessRecord::Due ProcessRecord::due(Instant now) const
{
    bool isBurstDue = burst && burst->nextAt() <= now;
    return {
        .burstScan = isBurstDue && !burst->hasScannedLast(),
        .burstEnd = isBurstDue && burst->hasScannedLast(),
        .tick = lifecycle && lifecycle->nextTickAt <= now,
        .missing = missingFollowUpAt && *missingFollowUpAt <= now,
        .unanswered = unanswered && unanswered->at && *unanswered->at <= now,
    };
}

std::optional<Instant> ProcessRecord::nextLook() const
{
    std::optional<Instant> next;
    auto consider = [&](Instant at) { next = std::min(next.value_or(at), at); };
    if (burst)
        consider(burst->nextAt());
    if (lifecycle)
        consider(lifecycle->nextTickAt);
    if (missingFollowUpAt)
        consider(*missingFollowUpAt);
    if (unanswered && unanswered->at)
        consider(*unanswered->at);
    return next;
}

bool ProcessRecord::isBlank() const
{
    return !isObserverAttached && !lifecycle && !burst && !missingFollowUpAt && !unanswered
        && soughtInVain.empty();
}

}
