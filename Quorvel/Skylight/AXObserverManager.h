#pragma once

#include <array>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "Quorvel/Platform/Dispatch.h"
#include "Quorvel/Platform/WeakOwner.h"
#include "Quorvel/Skylight/AXCalls.h"
#include "Quorvel/Skylight/AXWindowEvent.h"

namespace quorvel {

struct DebounceKey {
    std::string notification;
    WindowID windowID{};

    friend auto operator<=>(const DebounceKey&, const DebounceKey&) = default;
};

/// How a series of equal events is thinned out.
struct DebounceRule {
    enum class First { waits, isDeliveredAtOnce };

    First first = First::waits;
    /// A series that never pauses would never be delivered: after this long it is, and starts
    /// again.
    std::optional<Duration> longestWait;
};

/// Delivers only the last of a series of equal events, once they pause, and where the rule says so
/// also the first. Any thread; delivers on the callback queue.
class DebounceState {
public:
    DebounceState(Dispatch& dispatch, Queue& callbackQueue)
        : m_dispatch(dispatch)
        , m_callbackQueue(callbackQueue)
    {
    }

    void schedule(DebounceKey, const DebounceRule&, Work deliver);
    void cancel(WindowID);
    void cancelAll();

    static constexpr Duration kDelay = seconds(0.25);

private:
    struct Entry {
        std::uint64_t number = 0; ///< distinguishes the current task from one it replaced
        bool isWaiting = false;
        Instant firstAt; ///< of the pending events
        std::optional<Instant> lastAt;
        WorkItem work;
    };

    bool takeIfCurrent(const DebounceKey&, std::uint64_t number);

    Dispatch& m_dispatch;
    Queue& m_callbackQueue;
    std::mutex m_lock;
    std::uint64_t m_lastNumber = 0;
    std::map<DebounceKey, Entry> m_workItems;
};

/// Subscribes to the accessibility notifications of processes and passes them on as events.
///
/// All observers live on one dedicated thread, so that a slow or hung application never blocks the
/// user interface; all callbacks are made on the callback queue. Public operations on the main
/// thread, which must also destroy the manager.
class AXObserverManager {
public:
    static constexpr std::array<std::string_view, 2> applicationNotifications{
        ax::windowCreated,
        ax::focusedWindowChanged,
    };
    static constexpr std::array<std::string_view, 6> windowNotifications{
        ax::titleChanged,
        ax::windowResized,
        ax::windowMoved,
        ax::windowMiniaturized,
        ax::windowDeminiaturized,
        ax::elementDestroyed,
    };
    static constexpr std::array<std::string_view, 3> debouncedNotifications{
        ax::titleChanged,
        ax::windowResized,
        ax::windowMoved,
    };
    static constexpr std::array<Duration, 5> retryDelays{
        seconds(0.5), seconds(1), seconds(2), seconds(4), seconds(8)};

    AXObserverManager(Dispatch&, Accessibility&, Queue& callbackQueue);
    ~AXObserverManager();

    std::function<void(const AXWindowEvent&)> onEvent;
    std::function<void(ProcessID)> onObserverAdded;
    /// Every attempt to attach has failed, and no further one follows.
    std::function<void(ProcessID)> onObserverFailed;

    /// Returns once the observer thread's run loop is ready.
    void start();
    void stop();
    void observe(ProcessID);
    void stopObserving(ProcessID);
    /// Attaches to the process if not yet attached, else registers on its new windows.
    void refreshWindows(const std::set<ProcessID>&);

private:
    /// One process on the observer thread: attached, or about to be.
    struct PIDState {
        std::unique_ptr<AXObserver> observer; ///< null while not attached
        AXElement appElement;
        std::map<WindowID, AXElement> observedWindows;
        std::size_t failures = 0; ///< since everything last worked
        bool isRetryAwaited = false;
    };

    /// The same process on the callback queue: exists while somebody wants it observed.
    struct Wish {
        WorkItem retry;
    };

    enum class Occasion { attaching, later };

    /// A process that is attached and hangs is retried until it answers: nobody polls it.
    enum class Patience { limited, endless };

    // On the observer thread.
    /// Null unless it is attached.
    PIDState* attached(ProcessID);
    void addObserver(ProcessID);
    std::unique_ptr<AXObserver> registerApplication(ProcessID, const AXElement& application);
    void attachOrRefresh(ProcessID);
    /// Retried like attaching if registration on a window failed. A window on which it succeeds
    /// only now is announced: until then nobody reported what it did.
    void refreshWindowObservations(ProcessID, Occasion);
    void removeObserver(ProcessID);
    /// False if none of its notifications could be registered.
    bool observeWindow(ProcessID, PIDState&, WindowID, const AXElement&);
    void handleNotification(ProcessID, const AXElement&, std::string_view notification);
    std::optional<WindowID> resolveWindowIDFromObservedWindows(ProcessID, const AXElement&);
    /// After a failure. A failure while a retry is pending is not counted, or it would use up that
    /// retry.
    void scheduleRetry(ProcessID, Patience);
    /// Schedules one more attempt, unless one is pending: events of a busy process must not
    /// postpone it.
    void awaitRetry(ProcessID, Duration delay);
    void announceFailure(ProcessID);
    void deliver(AXWindowEvent);

    // On the callback queue.
    void retryAfter(ProcessID, Duration delay);

    Dispatch& m_dispatch;
    Queue& m_callbackQueue;
    AXCalls m_calls; ///< used on the observer thread only
    Accessibility& m_accessibility;

    // The observer thread's own.
    std::map<ProcessID, PIDState> m_pidStates;

    // The callback queue's own.
    std::map<ProcessID, Wish> m_wishes;

    DebounceState m_debounceState;
    WeakOwner<AXObserverManager> m_weak;
    RunLoopThread* m_runLoop = nullptr; ///< of the thread below, for use on that thread
    std::unique_ptr<RunLoopThread> m_thread; ///< last: joined before anything it uses goes
};

}
