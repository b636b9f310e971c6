#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string_view>
#include <utility>

namespace quorvel {

/// The platform's absolute reference clock: it never jumps, and its zero means nothing.
struct AbsoluteClock {
    using duration = std::chrono::nanoseconds;
    using rep = duration::rep;
    using period = duration::period;
    using time_point = std::chrono::time_point<AbsoluteClock>;
    static constexpr bool is_steady = true;
};
using Duration = AbsoluteClock::duration;
using Instant = AbsoluteClock::time_point;

/// Whole nanoseconds from seconds, so that 0.3 + 0.15 is exactly 0.45.
constexpr Duration seconds(double value)
{
    return Duration{static_cast<Duration::rep>(value * 1e9 + (value < 0 ? -0.5 : 0.5))};
}

using Work = std::function<void()>;

/// Holds work that is still to run; dropping or replacing it cancels.
///
/// Cancelling on the queue's own thread is final: the work does not run afterwards. Cancelling from
/// another thread never waits, so work that is just running goes on.
class WorkItem {
public:
    struct Handle {
        virtual ~Handle() = default;
        virtual void cancel() noexcept = 0;
        /// False once the work has begun (for repeating work: once it is cancelled).
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

/// Runs work one after another, in the order given. All calls from any thread. Work must not throw.
class Queue {
public:
    /// Waits for the work that is running and drops the rest.
    virtual ~Queue() = default;

    virtual void async(Work) = 0;
    /// Runs the work on the queue and waits for it; never from the queue itself.
    virtual void sync(const Work&) = 0;
    [[nodiscard]] virtual WorkItem after(Duration delay, Work) = 0;
    /// First run at once, then each `interval`; runs that fall behind are left out. After the first
    /// one, each may come later by up to `leeway`, so that the machine wakes up once for several.
    [[nodiscard]] WorkItem every(Duration interval, Work work, Duration leeway = {})
    {
        return repeat(interval, leeway, std::move(work));
    }

private:
    [[nodiscard]] virtual WorkItem repeat(Duration interval, Duration leeway, Work) = 0;
};

enum class QualityOfService { background, utility, userInitiated, userInteractive };

/// A thread of its own whose run loop waits for sources and for work.
class RunLoopThread {
public:
    /// Stops the loop and joins the thread; work not yet begun is dropped.
    virtual ~RunLoopThread() = default;

    /// From any thread; runs in the order given, on the thread.
    virtual void perform(Work) = 0;
};

/// Where code runs and what time it is. Nobody else sleeps, starts threads or reads a clock.
class Dispatch {
public:
    virtual ~Dispatch() = default;

    virtual Instant now() const = 0;
    virtual Queue& main() = 0;
    /// Runs work side by side, in no order.
    virtual Queue& background() = 0;
    virtual std::unique_ptr<Queue> makeSerialQueue(std::string_view label, QualityOfService) = 0;
    /// Returns once the thread's run loop is ready.
    virtual std::unique_ptr<RunLoopThread> startThread(std::string_view name, QualityOfService) = 0;
};

}
