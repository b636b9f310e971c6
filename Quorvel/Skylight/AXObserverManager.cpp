#include "Quorvel/Skylight/AXObserverManager.h"

#include <algorithm>

namespace quorvel {

namespace {

/// A title that changes without pause must still be seen to change.
constexpr Duration kLongestTitleWait = seconds(1);

/// People watch a title right after they have done something.
DebounceRule debounceRule(std::string_view notification)
{
    if (notification == ax::titleChanged)
        return {DebounceRule::First::isDeliveredAtOnce, kLongestTitleWait};
    return {};
}

bool isDebounced(std::string_view notification)
{
    auto& table = AXObserverManager::debouncedNotifications;
    return std::find(table.begin(), table.end(), notification) != table.end();
}

}

// MARK: DebounceState

void DebounceState::schedule(DebounceKey key, const DebounceRule& rule, Work deliver)
{
    std::lock_guard guard(m_lock);
    auto now = m_dispatch.now();
    auto& entry = m_workItems[key];
    bool isRow = entry.isWaiting || (entry.lastAt && now - *entry.lastAt < kDelay);
    entry.lastAt = now;
    if (!isRow && rule.first == DebounceRule::First::isDeliveredAtOnce) {
        m_callbackQueue.async(std::move(deliver));
        return;
    }
    if (!std::exchange(entry.isWaiting, true))
        entry.firstAt = now;
    auto delay = kDelay;
    if (rule.longestWait)
        delay = std::clamp(entry.firstAt + *rule.longestWait - now, Duration{}, kDelay);
    entry.number = ++m_lastNumber;
    entry.work = m_callbackQueue.after(
        delay, [this, key = std::move(key), number = entry.number, deliver = std::move(deliver)] {
            if (takeIfCurrent(key, number))
                deliver();
        });
}

bool DebounceState::takeIfCurrent(const DebounceKey& key, std::uint64_t number)
{
    std::lock_guard guard(m_lock);
    auto entry = m_workItems.find(key);
    if (entry == m_workItems.end() || entry->second.number != number)
        return false;
    // When the last one came tells whether the next is part of its row.
    entry->second.isWaiting = false;
    return true;
}

void DebounceState::cancel(WindowID window)
{
    std::lock_guard guard(m_lock);
    std::erase_if(m_workItems, [&](auto& entry) { return entry.first.windowID == window; });
}

void DebounceState::cancelAll()
{
    std::lock_guard guard(m_lock);
    m_workItems.clear();
}

// MARK: AXObserverManager

AXObserverManager::AXObserverManager(
    Dispatch& dispatch, Accessibility& accessibility, Queue& callbackQueue)
    : m_dispatch(dispatch)
    , m_callbackQueue(callbackQueue)
    , m_calls(accessibility)
    , m_accessibility(accessibility)
    , m_debounceState(dispatch, callbackQueue)
    , m_weak(*this)
{
}

AXObserverManager::~AXObserverManager()
{
    stop();
}

void AXObserverManager::start()
{
    if (m_thread)
        return;
    m_thread = m_dispatch.startThread("AXObserverManager", QualityOfService::userInitiated);
    m_runLoop = m_thread.get();
}

void AXObserverManager::stop()
{
    m_thread.reset();
    m_debounceState.cancelAll();
    m_pidStates.clear();
    m_wishes.clear();
}

void AXObserverManager::observe(ProcessID pid)
{
    if (!m_thread)
        return;
    m_wishes.try_emplace(pid);
    m_thread->perform([this, pid] { addObserver(pid); });
}

void AXObserverManager::stopObserving(ProcessID pid)
{
    m_wishes.erase(pid);
    if (m_thread)
        m_thread->perform([this, pid] { removeObserver(pid); });
}

void AXObserverManager::refreshWindows(const std::set<ProcessID>& pids)
{
    if (!m_thread)
        return;
    for (auto pid : pids) {
        m_wishes.try_emplace(pid);
        m_thread->perform([this, pid] { attachOrRefresh(pid); });
    }
}

void AXObserverManager::attachOrRefresh(ProcessID pid)
{
    if (attached(pid))
        refreshWindowObservations(pid, Occasion::later);
    else
        addObserver(pid);
}

AXObserverManager::PIDState* AXObserverManager::attached(ProcessID pid)
{
    auto state = m_pidStates.find(pid);
    return state != m_pidStates.end() && state->second.observer ? &state->second : nullptr;
}

void AXObserverManager::addObserver(ProcessID pid)
{
    if (attached(pid))
        return;
    AXCalls::Scan hungOnlyOnce(m_calls);
    auto application = m_calls.application(pid);
    auto observer = registerApplication(pid, application);
    if (!observer) {
        scheduleRetry(pid, Patience::limited);
        return;
    }
    auto& state = m_pidStates[pid];
    state.observer = std::move(observer);
    state.appElement = application;
    state.failures = 0;
    refreshWindowObservations(pid, Occasion::attaching);
    m_callbackQueue.async([weak = m_weak.reference(), pid] {
        auto* self = weak.get();
        if (self && self->m_wishes.contains(pid) && self->onObserverAdded)
            self->onObserverAdded(pid);
    });
}

std::unique_ptr<AXObserver> AXObserverManager::registerApplication(
    ProcessID pid, const AXElement& application)
{
    auto [error, observer] = m_accessibility.createObserver(
        pid, *m_runLoop, [this, pid](const AXElement& element, std::string_view notification) {
            handleNotification(pid, element, notification);
        });
    if (error != AXError::success || !observer)
        return nullptr;
    for (auto notification : applicationNotifications) {
        auto result = observer->addNotification(application, notification);
        if (result != AXError::success && result != AXError::notificationAlreadyRegistered)
            return nullptr;
    }
    return std::move(observer);
}

void AXObserverManager::scheduleRetry(ProcessID pid, Patience patience)
{
    auto& state = m_pidStates[pid];
    if (state.isRetryAwaited)
        return;
    if (state.failures >= retryDelays.size() && patience == Patience::limited) {
        state.failures = 0;
        if (!state.observer) {
            m_pidStates.erase(pid);
            announceFailure(pid);
        }
        return;
    }
    state.failures = std::min(state.failures, retryDelays.size() - 1);
    awaitRetry(pid, retryDelays[state.failures++]);
}

void AXObserverManager::awaitRetry(ProcessID pid, Duration delay)
{
    if (std::exchange(m_pidStates[pid].isRetryAwaited, true))
        return;
    m_callbackQueue.async([weak = m_weak.reference(), pid, delay] {
        if (auto* self = weak.get())
            self->retryAfter(pid, delay);
    });
}

void AXObserverManager::retryAfter(ProcessID pid, Duration delay)
{
    auto wish = m_wishes.find(pid);
    if (wish == m_wishes.end())
        return;
    wish->second.retry = m_callbackQueue.after(delay, [this, pid] {
        if (!m_thread)
            return;
        m_thread->perform([this, pid] {
            if (auto state = m_pidStates.find(pid); state != m_pidStates.end())
                state->second.isRetryAwaited = false;
            attachOrRefresh(pid);
        });
    });
}

void AXObserverManager::announceFailure(ProcessID pid)
{
    m_callbackQueue.async([weak = m_weak.reference(), pid] {
        auto* self = weak.get();
        if (self && self->m_wishes.contains(pid) && self->onObserverFailed)
            self->onObserverFailed(pid);
    });
}

void AXObserverManager::refreshWindowObservations(ProcessID pid, Occasion occasion)
{
    AXCalls::Scan hungOnlyOnce(m_calls);
    auto* state = attached(pid);
    if (!state)
        return;
    auto windows = m_calls.windows(pid);
    bool isComplete = windows.has_value();
    for (auto& window : windows.value_or(std::vector<AXElement>{})) {
        auto id = m_calls.windowID(pid, window);
        isComplete &= id.has_value();
        if (!id || state->observedWindows.contains(*id))
            continue;
        bool isHeard = observeWindow(pid, *state, *id, window);
        isComplete &= isHeard;
        if (isHeard && occasion != Occasion::attaching)
            deliver({std::string{ax::windowCreated}, pid, window, id});
    }
    isComplete &= !m_calls.hasTimedOut(pid);
    if (isComplete)
        state->failures = 0;
    else
        scheduleRetry(pid, m_calls.hasTimedOut(pid) ? Patience::endless : Patience::limited);
}

bool AXObserverManager::observeWindow(
    ProcessID pid, PIDState& state, WindowID id, const AXElement& window)
{
    if (state.observedWindows.contains(id))
        return true;
    bool isHeard = false;
    for (auto notification : windowNotifications) {
        auto result = m_calls.addNotification(pid, *state.observer, window, notification);
        // Too busy: the rest would fail alike, and all of them are asked for again.
        if (result == AXError::cannotComplete)
            return false;
        isHeard |= result == AXError::success || result == AXError::notificationAlreadyRegistered;
    }
    if (isHeard)
        state.observedWindows.emplace(id, window);
    return isHeard;
}

void AXObserverManager::removeObserver(ProcessID pid)
{
    if (auto* state = attached(pid)) {
        for (auto notification : applicationNotifications)
            state->observer->removeNotification(state->appElement, notification);
        for (auto& [id, window] : state->observedWindows) {
            m_debounceState.cancel(id);
            for (auto notification : windowNotifications)
                state->observer->removeNotification(window, notification);
        }
    }
    m_pidStates.erase(pid);
}

std::optional<WindowID> AXObserverManager::resolveWindowIDFromObservedWindows(
    ProcessID pid, const AXElement& element)
{
    auto* state = attached(pid);
    if (!state)
        return {};
    auto& windows = state->observedWindows;
    auto found = std::find_if(
        windows.begin(), windows.end(), [&](auto& entry) { return entry.second == element; });
    return found == windows.end() ? std::nullopt : std::optional{found->first};
}

void AXObserverManager::handleNotification(
    ProcessID pid, const AXElement& element, std::string_view notification)
{
    m_calls.setMessagingTimeout(element);
    auto id = m_calls.windowID(pid, element);
    if (!id)
        id = resolveWindowIDFromObservedWindows(pid, element);
    auto* state = attached(pid);
    if (state && notification == ax::windowCreated) {
        if (!id)
            scheduleRetry(pid, Patience::limited);
        else if (!observeWindow(pid, *state, *id, element))
            awaitRetry(pid, retryDelays.front());
    }
    if (state && id && notification == ax::elementDestroyed) {
        state->observedWindows.erase(*id);
        m_debounceState.cancel(*id);
    }
    deliver({std::string{notification}, pid, element, id});
}

void AXObserverManager::deliver(AXWindowEvent event)
{
    auto key = event.windowID && isDebounced(event.notification)
        ? std::optional{DebounceKey{event.notification, *event.windowID}}
        : std::nullopt;
    auto call = [weak = m_weak.reference(), event = std::move(event)] {
        auto* self = weak.get();
        if (self && self->m_thread && self->onEvent)
            self->onEvent(event);
    };
    if (key) {
        auto rule = debounceRule(key->notification);
        m_debounceState.schedule(std::move(*key), rule, std::move(call));
    } else {
        m_callbackQueue.async(std::move(call));
    }
}

}
