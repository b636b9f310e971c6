#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string_view>
#include <utility>

namespace quorvel {

/// The platform's monotonic reference clock: it never jumps, and its zero has no meaning.
struct AbsoluteClock {
    using duration = std::chrono::nanoseconds;
    using rep = duration::rep;
    using period = duration::period;
    using time_point = std::chrono::time_point<AbsoluteClock>;
    static constexpr bool is_steady = true;
};
using Duration = AbsoluteClock::duration;
using Instant = AbsoluteClock::time_point;

/// Seconds rounded to whole nanoseconds, so that 0.3 + 0.15 is exactly 0.45.
constexpr Duration seconds(double value)
{
    return Duration{static_cast<Duration::rep>(value * 1e9 + (value < 0 ? -0.5 : 0.5))};
}

using Work = std::function<void()>;

/// Holds work that has yet to run; dropping or replacing it cancels the work.
///
/// Cancelling on the queue's own thread is final: the work does not run afterwards. Cancelling from
/// another thread never waits, so work that is already running continues.
class WorkItem {
public:
    struct Handle {
        virtual ~Handle() = default;
        virtual void cancel() noexcept = 0;
        /// False once the work has begun (repeating work: once it is cancelled).
        virtual bool isPending() const noexcept = 0;
    };

    WorkItem() = default;
    explicit WorkItem(std::shared_ptr<Handle> handle) : m_handle(std::move(handle)) { }
    WorkItem(WorkItem&&) noexcept = default;
    WorkItem& operator=(WorkItem&& other) noexcept
    {
        if (this != &other) {
            cancel();
            m_handle = std::move(other.m_handle);
        }
        return *this;
    }
    ~WorkItem() { cancel(); }

    void cancel() noexcept
    {
        if (auto handle = std::exchange(m_handle, nullptr))
            handle->cancel();
    }
    bool isPending() const noexcept { return m_handle && m_handle->isPending(); }

private:
    std::shared_ptr<Handle> m_handle;
};

/// Runs work one at a time, in the order given. All calls from any thread. Work must not throw.
class Queue {
public:
    /// Waits for the running work and drops the rest.
    virtual ~Queue() = default;

    virtual void async(Work) = 0;
    /// Runs the work on the queue and waits for it; never from the queue itself.
    virtual void sync(const Work&) = 0;
    [[nodiscard]] virtual WorkItem after(Duration delay, Work) = 0;
    /// Runs at once, then every `interval`; runs that fall behind are skipped. After the first run,
    /// each may be late by up to `leeway`, so that the machine wakes up once for several.
    [[nodiscard]] WorkItem every(Duration interval, Work work, Duration leeway = {})
    {
        return repeat(interval, leeway, std::move(work));
    }

private:
    [[nodiscard]] virtual WorkItem repeat(Duration interval, Duration leeway, Work) = 0;
};

enum class QualityOfService { background, utility, userInitiated, userInteractive };

/// A thread whose run loop waits for sources and for work.
class RunLoopThread {
public:
    /// Stops the loop and joins the thread; work that has not begun is dropped.
    virtual ~RunLoopThread() = default;

    /// From any thread; runs in the order given, on the thread.
    virtual void perform(Work) = 0;
};

/// Where code runs and what time it is. No other code sleeps, starts threads or reads a clock.
class Dispatch {
public:
    virtual ~Dispatch() = default;

    virtual Instant now() const = 0;
    virtual Queue& main() = 0;
    /// Runs work concurrently, in no particular order.
    virtual Queue& background() = 0;
    virtual std::unique_ptr<Queue> makeSerialQueue(std::string_view label, QualityOfService) = 0;
    /// Returns once the thread's run loop is ready.
    virtual std::unique_ptr<RunLoopThread> startThread(std::string_view name, QualityOfService) = 0;
};

}
