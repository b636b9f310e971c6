#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>

#include "Quorvel/Platform/Dispatch.h"

namespace quorvel::xdg {

/// The work of one queue: what is ready, in order, and what is due later. Whoever runs the queue
/// either waits here or is notified by the hook. All calls from any thread.
class WorkSchedule : public std::enable_shared_from_this<WorkSchedule> {
public:
    /// Called under the lock when `nextDue` has changed.
    using NextDueHook = std::function<void()>;

    explicit WorkSchedule(NextDueHook hook = {});

    static Instant now();

    /// When the next work is due; `Instant::min()` means at once, absent means never.
    std::optional<Instant> nextDue() const;

    void post(Work);
    WorkItem at(Instant due, Work);
    /// Repeats each `interval` from now on. Where the leeway allows, it runs at a whole second,
    /// together with the timers of other programs that count in seconds.
    WorkItem every(Duration interval, Duration leeway, Work);

    /// Runs what is ready now, but nothing that is added meanwhile. From one thread at a time.
    void runTurn();
    /// Waits until something is ready and runs it; false once stopped. From any number of threads.
    bool waitAndRun();
    /// Workers waiting in `waitAndRun`, minus the work that is ready for them.
    int spareWorkers() const;

    /// Drops all work and ends the waiting. Running work continues.
    void stop();

private:
    class Timed;
    using DueKey = std::pair<Instant, std::uint64_t>; ///< equal times keep their order of posting

    struct Ready {
        Work work;
        std::shared_ptr<Timed> timed; ///< if set, it holds the work instead
    };

    struct Repetition {
        Duration interval{};
        Duration leeway{};
    };

    WorkItem add(Instant due, std::optional<Repetition>, Work);
    void insert(const std::shared_ptr<Timed>&, Instant due);
    void cancel(Timed&) noexcept;
    void collectDue(Instant now);
    bool takeReady(Ready&);
    void run(Ready&, std::unique_lock<std::mutex>&);
    void finish(const std::shared_ptr<Timed>&, Work&);
    std::optional<Instant> nextDueLocked() const;
    void nextDueMayHaveChanged();

    mutable std::mutex m_mutex;
    std::condition_variable m_condition;
    NextDueHook m_hook;
    std::deque<Ready> m_ready;
    std::map<DueKey, std::shared_ptr<Timed>> m_later;
    std::optional<Instant> m_toldDue;
    std::uint64_t m_lastSerial = 0;
    int m_waiting = 0;
    bool m_isInTurn = false;
    bool m_isStopped = false;
};

}
