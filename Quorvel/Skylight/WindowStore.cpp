#include "Quorvel/Skylight/WindowStore.h"

#include <algorithm>

#include "Quorvel/Platform/Displays.h"
#include "Quorvel/Platform/Workspace.h"

namespace quorvel {

namespace {

constexpr int kMissesBeforeRemoval = 2;
constexpr Duration kMissingGrace = seconds(0.45);
/// A new window that takes the focus is announced right after its application.
constexpr Duration kFocusGrace = seconds(0.1);
constexpr Duration kCrossScreenDelay = seconds(0.2);

}

WindowStore::WindowStore(Dispatch& dispatch, Accessibility& accessibility,
    WindowServer& windowServer, Displays& displays, Workspace& workspace, const Trace& trace)
    : m_dispatch(dispatch)
    , m_windowServer(windowServer)
    , m_displays(displays)
    , m_workspace(workspace)
    , m_trace(trace)
    , m_scanner(accessibility, windowServer, displays, workspace, trace)
{
    m_scanner.calls().onTimeOut = [this](ProcessID pid) { lookAgainOnceItAnswers(pid); };
}

const TrackedWindow* WindowStore::window(WindowID id) const
{
    auto found = m_windows.find(id);
    return found == m_windows.end() ? nullptr : &found->second;
}

std::vector<const TrackedWindow*> WindowStore::windows(SpaceID space) const
{
    std::vector<const TrackedWindow*> windows;
    for (auto& [id, window] : m_windows) {
        if (window.spaceIDs.contains(space))
            windows.push_back(&window);
    }
    return windows;
}

std::map<SpaceID, std::vector<const TrackedWindow*>> WindowStore::windowsBySpace() const
{
    std::map<SpaceID, std::vector<const TrackedWindow*>> windows;
    for (auto& [id, window] : m_windows) {
        for (auto space : window.spaceIDs)
            windows[space].push_back(&window);
    }
    return windows;
}

std::set<ProcessID> WindowStore::trackedPIDs() const
{
    std::set<ProcessID> pids;
    for (auto& [id, window] : m_windows)
        pids.insert(window.pid);
    return pids;
}

std::set<WindowID> WindowStore::windowIDs(std::string_view bundleIdentifier) const
{
    std::set<WindowID> ids;
    for (auto& [id, window] : m_windows) {
        if (window.bundleIdentifier == bundleIdentifier)
            ids.insert(ids.end(), id);
    }
    return ids;
}

std::set<WindowID> WindowStore::trackedWindowIDs(ProcessID pid) const
{
    std::set<WindowID> ids;
    for (auto& [id, window] : m_windows) {
        if (window.pid == pid)
            ids.insert(ids.end(), id);
    }
    return ids;
}

bool WindowStore::hasTrackedWindows(ProcessID pid) const
{
    return std::any_of(
        m_windows.begin(), m_windows.end(), [&](auto& entry) { return entry.second.pid == pid; });
}

bool WindowStore::hasMissingTrackedWindows(ProcessID pid) const
{
    return std::any_of(
        m_reconcileStateByWindowID.begin(), m_reconcileStateByWindowID.end(), [&](auto& entry) {
            auto* tracked = window(entry.first);
            return tracked && tracked->pid == pid && std::holds_alternative<Missing>(entry.second);
        });
}

TrackedWindow* WindowStore::tracked(const std::optional<WindowID>& id)
{
    if (!id)
        return nullptr;
    auto found = m_windows.find(*id);
    return found == m_windows.end() ? nullptr : &found->second;
}

// MARK: Reconciliation

bool WindowStore::requiresAXConfirmationForLiveAdmission(ProcessID pid) const
{
    return isObserverAttached(pid) || hasTrackedWindows(pid);
}

std::set<WindowID> WindowStore::unpublishedWindows(const PIDWindowScan& scan) const
{
    auto ids = scan.softlyRejectedWindowIDs;
    std::erase_if(ids, [&](WindowID id) { return m_windows.contains(id); });
    return ids;
}

int WindowStore::reconcileWindowsForPID(ProcessID pid, const WindowScanner::Moment& moment)
{
    auto scan = m_scanner.scan(pid, moment);
    if (scan.hasFailed) {
        // It has looked for nothing, so nothing was sought in vain.
        if (auto* known = knownRecord(pid); known && known->burst)
            known->burst->sought.emplace();
        lookAgainOnceItAnswers(pid);
        return 0;
    }
    bool hasChanged = updateTrackedWindows(pid, scan);
    auto [added, unexplained, spaceless] = admitNewWindows(pid, scan);
    unexplained.merge(spaceless);
    unexplained.merge(unreadWindows(pid, scan));
    hasChanged |= added > 0;
    hasChanged |= removeMissingWindows(pid, scan);
    if (hasChanged)
        onChange();
    if (isWorthSeeking(pid, std::move(unexplained)))
        seekUnexplained(pid);
    return static_cast<int>(scan.candidates.size());
}

std::set<WindowID> WindowStore::unreadWindows(ProcessID pid, const PIDWindowScan& scan)
{
    std::set<WindowID> ids;
    // One that does not answer is looked at again for that.
    if (m_scanner.calls().hasTimedOut(pid))
        return ids;
    for (auto& [id, candidate] : scan.candidates) {
        if (m_windows.contains(id) && (!candidate.title || !candidate.isMinimized))
            ids.insert(ids.end(), id);
    }
    return ids;
}

bool WindowStore::updateTrackedWindows(ProcessID pid, const PIDWindowScan& scan)
{
    bool hasChanged = false;
    for (auto& [id, candidate] : scan.candidates) {
        if (auto* window = tracked(id))
            hasChanged |= updateTracked(*window, pid, candidate);
    }
    return hasChanged;
}

bool WindowStore::isWorthSeeking(ProcessID pid, std::set<WindowID> unexplained)
{
    auto isGone = [&](WindowID id) { return !unexplained.contains(id); };
    auto* known = knownRecord(pid);
    if (!known)
        return !unexplained.empty();
    if (auto& burst = known->burst) {
        if (burst->sought)
            std::erase_if(*burst->sought, isGone);
        else
            burst->sought = unexplained;
        if (burst->hasScannedLast())
            known->soughtInVain = *burst->sought;
    }
    std::erase_if(known->soughtInVain, isGone);
    return !std::ranges::includes(known->soughtInVain, unexplained);
}

bool WindowStore::updateTracked(
    TrackedWindow& window, ProcessID pid, const ScannedWindowCandidate& candidate)
{
    auto before = window;
    window.pid = pid;
    window.appName = candidate.appName;
    window.bundleIdentifier = candidate.bundleID;
    window.windowTitle = candidate.title.value_or(window.windowTitle);
    // The notification that follows finds nothing new about the place then.
    if (window.frame != candidate.frame && areOnDifferentScreens(window.frame, candidate.frame))
        m_crossed.insert(window.windowID);
    window.frame = candidate.frame;
    window.isMinimized = candidate.isMinimized.value_or(window.isMinimized);
    window.spaceIDs = spacesNow(window, candidate.spaces, candidate.unlistedSpaces);
    return window != before;
}

std::set<SpaceID> WindowStore::spacesNow(const TrackedWindow& window, std::set<SpaceID> listed,
    const std::set<SpaceID>& unlistedSpaces) const
{
    auto isUnlisted = [&](SpaceID space) { return unlistedSpaces.contains(space); };
    if (!listed.empty() && std::ranges::none_of(window.spaceIDs, isUnlisted))
        return listed;
    auto spaces = m_scanner.querySpaces(window.windowID);
    return spaces.empty() ? window.spaceIDs : spaces;
}

void WindowStore::track(WindowID id, ProcessID pid, const ScannedWindowCandidate& candidate)
{
    m_windows.insert_or_assign(id,
        TrackedWindow{
            .windowID = id,
            .pid = pid,
            .appName = candidate.appName,
            .bundleIdentifier = candidate.bundleID,
            .windowTitle = candidate.title.value_or(""),
            .frame = candidate.frame,
            .isMinimized = candidate.isMinimized.value_or(false),
            .spaceIDs = candidate.spaces,
        });
    m_reconcileStateByWindowID.insert_or_assign(id, Active{});
    // Nobody announces what it could not tell yet.
    if (!candidate.title || !candidate.isMinimized)
        scheduleFreshDeferredScan(pid);
}

WindowStore::Admission WindowStore::admitNewWindows(ProcessID pid, const PIDWindowScan& scan)
{
    bool requiresAX = requiresAXConfirmationForLiveAdmission(pid);
    Admission admission{.unexplained = unpublishedWindows(scan), .spaceless = {}};
    for (auto& [id, candidate] : scan.candidates) {
        if (m_windows.contains(id))
            continue;
        // The lists of the spaces leave minimised windows out, and only the application can tell
        // that a window is one: so what it could not confirm is looked at again even off all
        // spaces.
        if (requiresAX && !candidate.isAXConfirmed) {
            admission.unexplained.insert(id);
            continue;
        }
        auto found = candidate;
        if (found.spaces.empty() && found.isAXConfirmed)
            found.spaces = m_scanner.querySpaces(id);
        if (!found.spaces.empty()) {
            track(id, pid, found);
            ++admission.added;
        } else if (found.isAXConfirmed) {
            admission.spaceless.insert(id);
        }
    }
    if (admission.added > 0)
        onObservationNeeded(pid);
    return admission;
}

bool WindowStore::removeMissingWindows(ProcessID pid, const PIDWindowScan& scan)
{
    bool hasChanged = false;
    for (auto id : trackedWindowIDs(pid)) {
        if (scan.candidates.contains(id) || scan.softlyRejectedWindowIDs.contains(id)) {
            m_reconcileStateByWindowID.insert_or_assign(id, Active{});
        } else if (!scan.isDockEligibleOwner) {
            forget(id);
            hasChanged = true;
            // Nobody announces that it has become an ordinary application again.
            if (!hasEnded(pid))
                scheduleFreshDeferredScan(pid);
        } else if (noteMissed(id) == Missed::removed) {
            hasChanged = true;
            // Still listed, so its application may have misjudged it only for a moment.
            if (scan.listedWindowIDs.contains(id))
                scheduleFreshDeferredScan(pid);
        }
    }
    return hasChanged;
}

WindowStore::Missed WindowStore::noteMissed(WindowID id)
{
    auto& state = m_reconcileStateByWindowID[id];
    auto* missing = std::get_if<Missing>(&state);
    if (!missing) {
        state = Missing{.firstMissingAt = m_dispatch.now()};
        return Missed::kept;
    }
    ++missing->misses;
    if (missing->misses < kMissesBeforeRemoval
        || m_dispatch.now() - missing->firstMissingAt < kMissingGrace)
        return Missed::kept;
    forget(id);
    return Missed::removed;
}

void WindowStore::forget(WindowID id)
{
    m_windows.erase(id);
    m_reconcileStateByWindowID.erase(id);
    m_crossed.erase(id);
}

// MARK: What the system reports

void WindowStore::populate()
{
    AXCalls::Scan hungOnlyOnce(m_scanner.calls());
    auto moment = m_scanner.lookAtAll();
    if (moment.listing == Listing::failed)
        std::ranges::for_each(moment.eligiblePIDs, [this](auto pid) { scheduleDeferredScan(pid); });
    for (auto& [pid, windows] : moment.windowsByOwner)
        populateProcess(pid, moment);
    // A question to ourselves would wait for the very thread that asks.
    if (auto frontmost = m_workspace.frontmostApplication();
        frontmost && !m_workspace.isSelfActive())
        readFocus(*frontmost);
    onChange();
}

void WindowStore::populateProcess(ProcessID pid, const WindowScanner::Moment& moment)
{
    auto scan = m_scanner.scan(pid, moment);
    bool needsRescan = !unpublishedWindows(scan).empty();
    for (auto& [id, candidate] : scan.candidates) {
        needsRescan |= !candidate.isAXConfirmed;
        if (candidate.spaces.empty())
            candidate.spaces = m_scanner.querySpaces(id);
        needsRescan |= candidate.spaces.empty();
        track(id, pid, candidate);
    }
    if (needsRescan)
        scheduleDeferredScan(pid);
}

void WindowStore::handleAppActivated(ProcessID pid)
{
    AXCalls::Scan hungOnlyOnce(m_scanner.calls());
    m_focusSearch.cancel();
    readFocus(pid);
    if (needsObserverBootstrap(pid))
        return; // whether to start with it is the caller's decision
    if (!isObserverAttached(pid))
        onObservationNeeded(pid);
    // One that does not answer is looked at again for that.
    if (!hasFocusedWindow(pid) && !m_scanner.calls().hasTimedOut(pid))
        m_focusSearch = m_dispatch.main().after(kFocusGrace, [this, pid] { seekFocus(pid); });
}

bool WindowStore::hasFocusedWindow(ProcessID pid) const
{
    auto* focused = m_focusedWindowID ? window(*m_focusedWindowID) : nullptr;
    return focused && focused->pid == pid;
}

/// It could not say which window it was, or the window has no chip.
void WindowStore::seekFocus(ProcessID pid)
{
    auto application = m_workspace.runningApplication(pid);
    bool mayHaveChips = application && application->activationPolicy == ActivationPolicy::regular;
    if (mayHaveChips && m_workspace.frontmostApplication() == pid && !hasFocusedWindow(pid))
        scheduleDeferredScan(pid);
}

void WindowStore::readFocus(ProcessID pid)
{
    ++m_debugEventSequence;
    auto frontmost = m_workspace.frontmostApplication();
    m_trace.line("handleAppActivated begin pid={} frontmostPid={} focusedBefore={} seq={}",
        raw(pid), frontmost ? raw(*frontmost) : -1, orNil(m_focusedWindowID), m_debugEventSequence);
    auto& calls = m_scanner.calls();
    auto reply = calls.copyAttribute(pid, calls.application(pid), ax::focusedWindow);
    auto* element = reply.get<AXElement>();
    if (!element) {
        m_trace.line(
            "handleAppActivated failed to read kAXFocusedWindowAttribute pid={} err={} seq={}",
            raw(pid), static_cast<int>(reply.error), m_debugEventSequence);
        return;
    }
    calls.setMessagingTimeout(*element);
    auto id = calls.windowID(pid, *element);
    if (!id) {
        m_trace.line("handleAppActivated focused AX element had no CGWindowID pid={} seq={}",
            raw(pid), m_debugEventSequence);
        return;
    }
    m_trace.line("handleAppActivated resolved focused={} seq={}", raw(*id), m_debugEventSequence);
    setFocusedWindow(*id);
}

void WindowStore::setFocusedWindow(WindowID id)
{
    if (m_focusedWindowID == id)
        return;
    m_focusedWindowID = id;
    onChange();
}

bool WindowStore::needsObserverBootstrap(ProcessID pid) const
{
    auto* known = knownRecord(pid);
    bool isCared = known && (known->isObserverAttached || known->lifecycle || known->burst);
    return !isCared && !hasTrackedWindows(pid);
}

int WindowStore::addWindowsForPID(ProcessID pid)
{
    auto scan = m_scanner.scanWindows(pid);
    auto [added, unexplained, spaceless] = admitNewWindows(pid, scan);
    if (added > 0)
        onChange();
    if (scan.hasFailed || !unexplained.empty())
        scheduleDeferredScan(pid);
    return added;
}

void WindowStore::removeWindows(ProcessID pid)
{
    m_processes.erase(pid);
    scheduleNextLook();
    auto ids = trackedWindowIDs(pid);
    for (auto id : ids)
        forget(id);
    if (!ids.empty())
        onChange();
}

void WindowStore::refreshSpaces(const std::optional<WindowScanner::SpacesMoment>& moment)
{
    if (!moment)
        return refreshSpaces(m_scanner.lookAtSpaces());
    auto& map = moment->windows;
    bool hasChanged = false;
    for (auto& [id, window] : m_windows) {
        auto spaces = spacesNow(window, map.spaces(id), map.unlistedSpaces());
        if (spaces == window.spaceIDs)
            continue;
        window.spaceIDs = std::move(spaces);
        hasChanged = true;
    }
    if (hasChanged)
        onChange();
}

void WindowStore::resyncMinimizedWindows()
{
    AXCalls::Scan hungOnlyOnce(m_scanner.calls());
    std::map<ProcessID, AXWindowMetadataByID> metadataByPID;
    for (auto pid : trackedPIDs())
        metadataByPID[pid] = m_scanner.copyAXWindowMetadataByID(pid).first;
    bool hasChanged = false;
    for (auto& [id, window] : m_windows) {
        auto before = window;
        auto& metadataByID = metadataByPID[window.pid];
        if (auto metadata = metadataByID.find(id); metadata != metadataByID.end())
            window.isMinimized = metadata->second.isMinimized.value_or(window.isMinimized);
        if (window.isMinimized && window.spaceIDs.empty())
            window.spaceIDs = m_scanner.querySpaces(id);
        hasChanged |= window != before;
    }
    if (hasChanged)
        onChange();
}

int WindowStore::discoverNewWindowsForTrackedPIDs(std::optional<WindowScanner::SpacesMoment> spaces)
{
    AXCalls::Scan hungOnlyOnce(m_scanner.calls());
    auto moment = spaces ? m_scanner.lookAtAll(std::move(*spaces)) : m_scanner.lookAtAll();
    auto pids = trackedPIDs();
    if (moment.listing == Listing::failed)
        pids.insert(moment.eligiblePIDs.begin(), moment.eligiblePIDs.end());
    for (auto& [pid, windows] : moment.windowsByOwner)
        pids.insert(pid);
    Discovery total;
    for (auto pid : pids) {
        auto [added, hasChanged] = discover(pid, moment);
        total.added += added;
        total.hasChanged |= hasChanged;
    }
    if (total.hasChanged)
        onChange();
    return total.added;
}

WindowStore::Discovery WindowStore::discover(ProcessID pid, const WindowScanner::Moment& moment)
{
    bool isNew = !hasTrackedWindows(pid);
    auto scan = m_scanner.scan(pid, moment);
    if (scan.hasFailed) {
        scheduleDeferredScan(pid);
        return {};
    }
    auto [added, unexplained, spaceless] = admitNewWindows(pid, scan);
    auto isShown = [&](WindowID id) {
        auto spaces = moment.spaces.windows.spaces(id);
        return std::ranges::any_of(
            moment.spaces.shown, [&](SpaceID space) { return spaces.contains(space); });
    };
    // Applications without a chip keep many windows that nobody ever sees.
    bool isWorthIt = isNew ? std::ranges::any_of(unexplained, isShown) : !unexplained.empty();
    if (isWorthIt)
        scheduleFreshDeferredScan(pid);
    // A window whose end nobody announced is noticed here and gone after the usual grace.
    bool hasRemoved = removeMissingWindows(pid, scan);
    scheduleMissingFollowUp(pid);
    return {added, added > 0 || hasRemoved};
}

void WindowStore::scheduleCrossScreenSpacesRefresh()
{
    m_pendingCrossScreenRefresh
        = m_dispatch.main().after(kCrossScreenDelay, [this] { refreshSpaces(); });
}

}
