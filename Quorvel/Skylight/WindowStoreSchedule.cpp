// When a process is looked at again: the burst of deferred scans and the life cycle.

#include <algorithm>

#include "Quorvel/Platform/Workspace.h"
#include "Quorvel/Skylight/WindowStore.h"

namespace quorvel {

namespace {

constexpr Duration kBurstScans[] = {seconds(0.3), seconds(0.8), seconds(2.0)};
constexpr Duration kBurstEnd = seconds(2.5);

constexpr Duration kObservedInterval = seconds(0.8);
constexpr Duration kUnobservedInterval = seconds(0.9);
constexpr Duration kLongestUnobservedInterval = seconds(2.5);
constexpr double kUnobservedBackOff = 1.35;
constexpr Duration kObservedMonitoring = seconds(12);
constexpr Duration kSoon = seconds(0.2);
constexpr int kStableScans = 2;

constexpr Duration kFirstUnansweredFollowUp = seconds(2.5);
constexpr Duration kLastUnansweredFollowUp = seconds(10);

Duration backedOff(Duration interval)
{
    auto longer = static_cast<double>(interval.count()) * kUnobservedBackOff;
    return std::clamp(Duration{static_cast<Duration::rep>(longer + 0.5)}, kUnobservedInterval,
        kLongestUnobservedInterval);
}

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

// MARK: Deferred scans

void WindowStore::scheduleDeferredScan(ProcessID pid)
{
    auto [entry, isNew] = m_pendingScans.try_emplace(pid);
    if (!isNew) {
        // The remaining scans of the burst serve this request, unless there is none left.
        entry->second.isRequestedAgain |= entry->second.hasScannedLast;
        return;
    }
    auto& work = entry->second.work;
    for (auto delay : kBurstScans) {
        bool isLast = delay == std::end(kBurstScans)[-1];
        work.push_back(
            m_dispatch.main().after(delay, [this, pid, isLast] { runDeferredScan(pid, isLast); }));
    }
    work.push_back(m_dispatch.main().after(kBurstEnd, [this, pid] { endDeferredScanBurst(pid); }));
}

void WindowStore::scheduleFreshDeferredScan(ProcessID pid)
{
    if (auto burst = m_pendingScans.find(pid); burst != m_pendingScans.end())
        burst->second.isRequestedAgain = true;
    else
        scheduleDeferredScan(pid);
}

void WindowStore::lookAt(ProcessID pid)
{
    AXCalls::Scan hungOnlyOnce(m_scanner.calls());
    int candidates = reconcileWindowsForPID(pid);
    if (candidates >= 1 && m_workspace.frontmostApplication() == pid)
        handleAppActivated(pid);
}

void WindowStore::runDeferredScan(ProcessID pid, bool isLast)
{
    if (!m_pendingScans.contains(pid))
        return;
    lookAt(pid);
    auto burst = m_pendingScans.find(pid);
    if (!isLast || burst == m_pendingScans.end())
        return;
    burst->second.hasScannedLast = true;
    m_soughtInVainByPID[pid] = burst->second.sought.value_or(std::set<WindowID>{});
}

void WindowStore::endDeferredScanBurst(ProcessID pid)
{
    auto burst = m_pendingScans.find(pid);
    if (burst == m_pendingScans.end())
        return;
    bool isRequestedAgain = burst->second.isRequestedAgain;
    m_pendingScans.erase(burst);
    if (isRequestedAgain)
        scheduleDeferredScan(pid);
    else
        scheduleMissingFollowUp(pid);
}

// MARK: Processes that do not answer

void WindowStore::lookAgainOnceItAnswers(ProcessID pid)
{
    auto application = m_workspace.runningApplication(pid);
    bool mayHaveChips = application && !application->isTerminated
        && application->activationPolicy == ActivationPolicy::regular;
    if (!mayHaveChips)
        return;
    auto& followUp = m_unansweredByPID[pid];
    if (followUp.work.isPending())
        return;
    followUp.delay
        = std::clamp(followUp.delay * 2, kFirstUnansweredFollowUp, kLastUnansweredFollowUp);
    followUp.work
        = m_dispatch.main().after(followUp.delay, [this, pid] { runUnansweredFollowUp(pid); });
}

void WindowStore::runUnansweredFollowUp(ProcessID pid)
{
    if (m_workspace.runningApplication(pid)) {
        lookAt(pid);
        scheduleMissingFollowUp(pid);
    }
    auto followUp = m_unansweredByPID.find(pid);
    if (followUp != m_unansweredByPID.end() && !followUp->second.work.isPending())
        m_unansweredByPID.erase(followUp);
}

// MARK: Life cycle

void WindowStore::startLifecycleMonitoring(ProcessID pid, Duration initialDelay)
{
    bool isAttached = m_observerAttachedPIDs.contains(pid);
    m_lifecycleByPID.insert_or_assign(pid,
        PIDLifecycleState{
            .phase = isAttached ? PIDLifecyclePhase::runningObserved : PIDLifecyclePhase::launching,
            .startedAt = m_dispatch.now(),
            .observerAttached = isAttached,
            .nextInterval = isAttached ? kObservedInterval : kUnobservedInterval,
            .stableScans = 0,
            .lastTrackedWindowIDs = trackedWindowIDs(pid),
        });
    scheduleLifecycleTick(pid, initialDelay);
}

void WindowStore::scheduleLifecycleTick(ProcessID pid, Duration delay)
{
    m_lifecycleWorkByPID[pid]
        = m_dispatch.main().after(delay, [this, pid] { runLifecycleTick(pid); });
}

void WindowStore::handleObserverAttached(ProcessID pid)
{
    bool isFirst = m_observerAttachedPIDs.insert(pid).second;
    auto entry = m_lifecycleByPID.find(pid);
    if (entry == m_lifecycleByPID.end()) {
        // What it did since it was looked at, nobody told.
        if (isFirst)
            scheduleDeferredScan(pid);
        return;
    }
    entry->second = PIDLifecycleState{
        .phase = PIDLifecyclePhase::runningObserved,
        .startedAt = entry->second.startedAt,
        .observerAttached = true,
        .nextInterval = kObservedInterval,
        .stableScans = 0,
        .lastTrackedWindowIDs = trackedWindowIDs(pid),
    };
    scheduleLifecycleTick(pid, kSoon);
}

void WindowStore::handleObserverFailed(ProcessID pid)
{
    if (!m_lifecycleByPID.contains(pid))
        startLifecycleMonitoring(pid, kUnobservedInterval);
}

void WindowStore::ensureLifecycleMonitoringForWindowActivity(ProcessID pid)
{
    auto entry = m_lifecycleByPID.find(pid);
    if (entry == m_lifecycleByPID.end()) {
        startLifecycleMonitoring(pid, kSoon);
        return;
    }
    entry->second.stableScans = 0;
    entry->second.lastTrackedWindowIDs = trackedWindowIDs(pid);
    scheduleLifecycleTick(pid, kSoon);
}

void WindowStore::runLifecycleTick(ProcessID pid)
{
    if (!m_lifecycleByPID.contains(pid))
        return;
    auto application = m_workspace.runningApplication(pid);
    if (!application || application->isTerminated) {
        removeWindows(pid);
        return;
    }
    // Nobody else tells where the focus of an unobserved process is.
    if (m_observerAttachedPIDs.contains(pid))
        reconcileWindowsForPID(pid);
    else
        lookAt(pid);
    auto entry = m_lifecycleByPID.find(pid);
    if (entry == m_lifecycleByPID.end())
        return;

    auto& state = entry->second;
    auto current = trackedWindowIDs(pid);
    bool isStable = current == state.lastTrackedWindowIDs && !hasMissingTrackedWindows(pid);
    state.stableScans = isStable ? state.stableScans + 1 : 0;
    if (!state.observerAttached) {
        state.nextInterval = backedOff(state.nextInterval);
        state.phase = PIDLifecyclePhase::runningUnobserved;
    } else if (state.stableScans >= kStableScans
        || m_dispatch.now() - state.startedAt >= kObservedMonitoring) {
        cancelLifecycleMonitoring(pid);
        scheduleMissingFollowUp(pid);
        return;
    } else {
        state.nextInterval = kObservedInterval;
        state.phase = PIDLifecyclePhase::runningObserved;
    }
    state.lastTrackedWindowIDs = std::move(current);
    scheduleLifecycleTick(pid, state.nextInterval);
}

void WindowStore::cancelLifecycleMonitoring(ProcessID pid)
{
    m_lifecycleWorkByPID.erase(pid);
    m_lifecycleByPID.erase(pid);
}

}
