#include "Hosts/MacOS/System/DispatchTimer.h"

#include <algorithm>

namespace quorvel {

namespace {

using Keeper = std::shared_ptr<DispatchTimer>;

/// How late a timer may come so that the system can wake up for several at once: a little, or what
/// was asked for.
std::uint64_t leewayFor(Duration duration, Duration leeway)
{
    using namespace std::chrono_literals;
    const auto little = std::min<Duration>(duration / 10, 20ms);
    return static_cast<std::uint64_t>(std::max(little, leeway).count());
}

}

std::shared_ptr<DispatchTimer> DispatchTimer::start(dispatch_queue_t queue,
    std::shared_ptr<QueueState> state, Mode mode, Duration delayOrInterval, Duration leeway,
    Work work)
{
    const dispatch_source_t source
        = dispatch_source_create(DISPATCH_SOURCE_TYPE_TIMER, 0, 0, queue);
    auto timer = std::make_shared<DispatchTimer>(source, std::move(state), mode, std::move(work));
    timer->schedule(std::max(delayOrInterval, Duration{}), leeway);
    return timer;
}

DispatchTimer::DispatchTimer(
    dispatch_source_t source, std::shared_ptr<QueueState> state, Mode mode, Work work)
    : m_source(source)
    , m_state(std::move(state))
    , m_mode(mode)
    , m_work(std::make_shared<const Work>(std::move(work)))
{
}

DispatchTimer::~DispatchTimer()
{
    dispatch_release(m_source);
}

void DispatchTimer::schedule(Duration delayOrInterval, Duration leeway)
{
    const auto nanoseconds = delayOrInterval.count();
    const bool repeats = m_mode == Mode::repeating;
    dispatch_source_set_timer(m_source, dispatch_time(DISPATCH_TIME_NOW, repeats ? 0 : nanoseconds),
        repeats ? static_cast<std::uint64_t>(nanoseconds) : DISPATCH_TIME_FOREVER,
        leewayFor(delayOrInterval, leeway));
    dispatch_set_context(m_source, new Keeper(shared_from_this()));
    dispatch_source_set_event_handler_f(
        m_source, [](void* keeper) { (*static_cast<Keeper*>(keeper))->fire(); });
    // Comes after the last event, so nothing reads the keeper any more.
    dispatch_source_set_cancel_handler_f(
        m_source, [](void* keeper) { delete static_cast<Keeper*>(keeper); });
    dispatch_resume(m_source);
}

void DispatchTimer::fire()
{
    if (m_state->isClosed || m_mode == Mode::once)
        dispatch_source_cancel(m_source);
    const SharedWork work = takeForRun();
    if (work && !m_state->isClosed)
        (*work)();
}

DispatchTimer::SharedWork DispatchTimer::takeForRun()
{
    const std::lock_guard lock(m_mutex);
    return m_mode == Mode::once ? std::exchange(m_work, nullptr) : m_work;
}

void DispatchTimer::cancel() noexcept
{
    SharedWork dropped; // dies outside the lock: what it captured may cancel other work
    {
        const std::lock_guard lock(m_mutex);
        dropped = std::exchange(m_work, nullptr);
    }
    dispatch_source_cancel(m_source);
}

bool DispatchTimer::isPending() const noexcept
{
    const std::lock_guard lock(m_mutex);
    return m_work != nullptr;
}

}
