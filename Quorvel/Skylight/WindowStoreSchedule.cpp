// When a process is looked at again: the burst of deferred scans and the life cycle.

#include <algorithm>
#include <utility>

#include "Quorvel/Platform/Workspace.h"
#include "Quorvel/Skylight/WindowStore.h"

namespace quorvel {

namespace {

constexpr Duration kObservedInterval = seconds(0.8);
constexpr Duration kUnobservedInterval = seconds(0.9);
constexpr Duration kLongestUnobservedInterval = seconds(2.5);
constexpr double kUnobservedBackOff = 1.35;
constexpr Duration kObservedMonitoring = seconds(12);
constexpr Duration kSoon = seconds(0.2);
constexpr int kStableScans = 2;

constexpr Duration kMissingFollowUp = seconds(0.5);
constexpr Duration kFirstUnansweredFollowUp = seconds(2.5);
constexpr Duration kLastUnansweredFollowUp = seconds(10);

Duration backedOff(Duration interval)
{
    auto longer = static_cast<double>(interval.count()) * kUnobservedBackOff;
    return std::clamp(Duration{static_cast<Duration::rep>(longer + 0.5)}, kUnobservedInterval,
        kLongestUnobservedInterval);
}

}

// MARK: The next look

ProcessRecord* WindowStore::knownRecord(ProcessID pid)
{
    auto found = m_processes.find(pid);
    return found == m_processes.end() ? nullptr : &found->second;
}

const ProcessRecord* WindowStore::knownRecord(ProcessID pid) const
{
    auto found = m_processes.find(pid);
    return found == m_processes.end() ? nullptr : &found->second;
}

bool WindowStore::isObserverAttached(ProcessID pid) const
{
    auto* known = knownRecord(pid);
    return known && known->isObserverAttached;
}

void WindowStore::scheduleNextLook()
{
    std::optional<Instant> next;
    for (auto& [pid, record] : m_processes) {
        if (auto at = record.nextLook())
            next = std::min(next.value_or(*at), *at);
    }
    if (next == m_nextLookAt && m_nextLook.isPending())
        return;
    m_nextLookAt = next;
    m_nextLook.cancel();
    if (next) {
        m_nextLook = m_dispatch.main().after(
            std::max(*next - m_dispatch.now(), Duration{}), [this] { runDueLooks(); });
    }
}

void WindowStore::runDueLooks()
{
    auto now = m_dispatch.now();
    std::map<ProcessID, ProcessRecord::Due> dueByPID;
    std::set<ProcessID> scanned;
    for (auto& [pid, record] : m_processes) {
        auto next = record.nextLook();
        if (!next || *next > now)
            continue;
        auto due = dueByPID[pid] = record.due(now);
        if (due.needsScan())
            scanned.insert(pid);
    }
    auto moment = scanned.empty() ? WindowScanner::Moment{} : m_scanner.lookAt(scanned);
    for (auto& [pid, due] : dueByPID)
        runDueLook(pid, due, moment);
    std::erase_if(m_processes, [](auto& entry) { return entry.second.isBlank(); });
    scheduleNextLook();
}

void WindowStore::runDueLook(
    ProcessID pid, ProcessRecord::Due due, const WindowScanner::Moment& moment)
{
    auto* known = knownRecord(pid);
    if (!known)
        return; // it went while another was looked at
    if (due.tick && hasEnded(pid))
        return removeWindows(pid);
    if (due.missing)
        known->missingFollowUpAt.reset();
    if (due.unanswered)
        known->unanswered->at.reset();
    // Counted before it is made: what the last look cannot explain is for another burst.
    if (due.burstScan && known->burst)
        ++known->burst->scansDone;
    if (due.needsScan())
        lookAt(pid, due, moment);
    if (due.burstEnd)
        endDeferredScanBurst(pid);
    if (due.tick)
        concludeLifecycleTick(pid);
    if ((due.missing || due.unanswered) && moment.listing == Listing::complete)
        scheduleMissingFollowUp(pid);
    known = knownRecord(pid);
    if (known && known->unanswered && !known->unanswered->at)
        known->unanswered.reset();
}

void WindowStore::lookAt(ProcessID pid, ProcessRecord::Due due, const WindowScanner::Moment& moment)
{
    AXCalls::Scan hungOnlyOnce(m_scanner.calls());
    int candidates = reconcileWindowsForPID(pid, moment);
    // Nobody else tells where the focus of an unobserved process is.
    bool mayHaveNewFocus
        = due.burstScan || due.unanswered || (due.tick && !isObserverAttached(pid));
    if (mayHaveNewFocus && candidates >= 1 && m_workspace.frontmostApplication() == pid)
        readFocus(pid);
}

bool WindowStore::hasEnded(ProcessID pid) const
{
    auto application = m_workspace.runningApplication(pid);
    return !application || application->isTerminated;
}

// MARK: Deferred scans

void WindowStore::scheduleDeferredScan(ProcessID pid)
{
    auto& burst = record(pid).burst;
    // The remaining scans of the burst serve this request, unless there is none left.
    if (burst)
        burst->isRequestedAgain |= burst->hasScannedLast();
    else
        burst.emplace().startedAt = m_dispatch.now();
    scheduleNextLook();
}

void WindowStore::seekUnexplained(ProcessID pid)
{
    if (auto& burst = record(pid).burst)
        burst->hasNewRiddles |= burst->hasScannedLast();
    else
        scheduleDeferredScan(pid);
}

void WindowStore::scheduleFreshDeferredScan(ProcessID pid)
{
    auto& burst = record(pid).burst;
    if (burst && burst->scansDone > 0)
        burst->isRequestedAgain = true;
    else
        scheduleDeferredScan(pid);
}

void WindowStore::endDeferredScanBurst(ProcessID pid)
{
    auto* known = knownRecord(pid);
    if (!known || !known->burst)
        return;
    auto ended = *std::exchange(known->burst, std::nullopt);
    bool hasSequel = ended.hasNewRiddles && !ended.isSequel;
    if (!ended.isRequestedAgain && !hasSequel)
        return scheduleMissingFollowUp(pid);
    scheduleDeferredScan(pid);
    record(pid).burst->isSequel = !ended.isRequestedAgain;
}

void WindowStore::scheduleMissingFollowUp(ProcessID pid)
{
    bool isNeeded = hasMissingTrackedWindows(pid);
    if (isNeeded)
        record(pid).missingFollowUpAt = m_dispatch.now() + kMissingFollowUp;
    else if (auto* known = knownRecord(pid))
        known->missingFollowUpAt.reset();
    scheduleNextLook();
}

// MARK: Processes that do not answer

void WindowStore::lookAgainOnceItAnswers(ProcessID pid)
{
    auto application = m_workspace.runningApplication(pid);
    bool mayHaveChips = application && !application->isTerminated
        && application->activationPolicy == ActivationPolicy::regular;
    if (!mayHaveChips)
        return;
    auto& followUp = record(pid).unanswered;
    if (!followUp)
        followUp = UnansweredFollowUp{};
    if (followUp->at)
        return;
    followUp->delay
        = std::clamp(followUp->delay * 2, kFirstUnansweredFollowUp, kLastUnansweredFollowUp);
    followUp->at = m_dispatch.now() + followUp->delay;
    scheduleNextLook();
}

// MARK: Life cycle

void WindowStore::startLifecycleMonitoring(ProcessID pid, Duration initialDelay)
{
    bool isAttached = isObserverAttached(pid);
    record(pid).lifecycle = PIDLifecycleState{
        .phase = isAttached ? PIDLifecyclePhase::runningObserved : PIDLifecyclePhase::launching,
        .startedAt = m_dispatch.now(),
        .observerAttached = isAttached,
        .nextInterval = isAttached ? kObservedInterval : kUnobservedInterval,
        .stableScans = 0,
        .lastTrackedWindowIDs = trackedWindowIDs(pid),
        .nextTickAt = {},
    };
    scheduleLifecycleTick(pid, initialDelay);
}

void WindowStore::scheduleLifecycleTick(ProcessID pid, Duration delay)
{
    auto& state = *record(pid).lifecycle;
    state.nextTickAt = m_dispatch.now() + delay;
    m_trace.line("lifecycle pid={} phase={} stableScans={} delay={:.3f}", raw(pid),
        rawValue(state.phase), state.stableScans, std::chrono::duration<double>(delay).count());
    scheduleNextLook();
}

void WindowStore::handleObserverAttached(ProcessID pid)
{
    bool isFirst = !std::exchange(record(pid).isObserverAttached, true);
    auto& lifecycle = record(pid).lifecycle;
    if (!lifecycle) {
        // What it did since it was looked at, nobody told.
        if (isFirst)
            scheduleDeferredScan(pid);
        return;
    }
    *lifecycle = PIDLifecycleState{
        .phase = PIDLifecyclePhase::runningObserved,
        .startedAt = lifecycle->startedAt,
        .observerAttached = true,
        .nextInterval = kObservedInterval,
        .stableScans = 0,
        .lastTrackedWindowIDs = trackedWindowIDs(pid),
        .nextTickAt = {},
    };
    scheduleLifecycleTick(pid, kSoon);
}

void WindowStore::handleObserverFailed(ProcessID pid)
{
    // One without a window is looked at when it comes to the front.
    if (hasTrackedWindows(pid) && !record(pid).lifecycle)
        startLifecycleMonitoring(pid, kUnobservedInterval);
}

void WindowStore::ensureLifecycleMonitoringForWindowActivity(ProcessID pid)
{
    auto& lifecycle = record(pid).lifecycle;
    if (!lifecycle) {
        startLifecycleMonitoring(pid, kSoon);
        return;
    }
    lifecycle->stableScans = 0;
    lifecycle->lastTrackedWindowIDs = trackedWindowIDs(pid);
    scheduleLifecycleTick(pid, kSoon);
}

void WindowStore::concludeLifecycleTick(ProcessID pid)
{
    auto* known = knownRecord(pid);
    if (!known || !known->lifecycle)
        return;
    auto& state = *known->lifecycle;
    auto current = trackedWindowIDs(pid);
    bool isStable = current == state.lastTrackedWindowIDs && !hasMissingTrackedWindows(pid);
    state.stableScans = isStable ? state.stableScans + 1 : 0;
    if (!state.observerAttached) {
        state.nextInterval = backedOff(state.nextInterval);
        state.phase = PIDLifecyclePhase::runningUnobserved;
    } else if (state.stableScans >= kStableScans
        || m_dispatch.now() - state.startedAt >= kObservedMonitoring) {
        known->lifecycle.reset();
        scheduleMissingFollowUp(pid);
        return;
    } else {
        state.nextInterval = kObservedInterval;
        state.phase = PIDLifecyclePhase::runningObserved;
    }
    state.lastTrackedWindowIDs = std::move(current);
    scheduleLifecycleTick(pid, state.nextInterval);
}

}
