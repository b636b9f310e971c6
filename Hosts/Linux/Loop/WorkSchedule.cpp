#include "Hosts/Linux/Loop/WorkSchedule.h"

#include <algorithm>
#include <chrono>

namespace quorvel::xdg {

namespace {

std::chrono::steady_clock::time_point toSteady(Instant instant)
{
    return std::chrono::steady_clock::time_point{instant.time_since_epoch()};
}

/// The next run of a repetition: in its own rhythm, without those that fell behind.
Instant followingRun(Instant last, Duration interval, Duration leeway, Instant now)
{
    auto step = std::max(interval, Duration{1});
    auto behind = std::max(Duration{0}, now - last);
    auto next = last + step * (behind / step + 1);
    auto second = std::chrono::ceil<std::chrono::seconds>(next);
    return second - next <= leeway ? second : next;
}

}

class WorkSchedule::Timed final : public WorkItem::Handle {
public:
    enum class State { later, ready, running, ended };

    Timed(std::weak_ptr<WorkSchedule> owner, std::optional<Repetition> repetition_, Work work_)
        : schedule(std::move(owner))
        , repetition(repetition_)
        , work(std::move(work_))
    {
    }

    void cancel() noexcept override
    {
        if (auto owner = schedule.lock())
            owner->cancel(*this);
    }

    bool isPending() const noexcept override
    {
        auto owner = schedule.lock();
        if (!owner)
            return false;
        std::lock_guard lock{owner->m_mutex};
        return state == State::later || state == State::ready
            || (state == State::running && repetition.has_value());
    }

    const std::weak_ptr<WorkSchedule> schedule;
    const std::optional<Repetition> repetition;
    // Guarded by the schedule's lock.
    Work work;
    DueKey key{};
    State state = State::later;
};

WorkSchedule::WorkSchedule(NextDueHook hook) : m_hook(std::move(hook))
{
}

Instant WorkSchedule::now()
{
    return Instant{
        std::chrono::duration_cast<Duration>(std::chrono::steady_clock::now().time_since_epoch())};
}

void WorkSchedule::post(Work work)
{
    std::lock_guard lock{m_mutex};
    if (m_isStopped)
        return;
    m_ready.push_back({std::move(work), nullptr});
    nextDueMayHaveChanged();
}

WorkItem WorkSchedule::at(Instant due, Work work)
{
    return add(due, std::nullopt, std::move(work));
}

WorkItem WorkSchedule::every(Duration interval, Duration leeway, Work work)
{
    return add(now(), Repetition{interval, leeway}, std::move(work));
}

WorkItem WorkSchedule::add(Instant due, std::optional<Repetition> repetition, Work work)
{
    auto timed = std::make_shared<Timed>(weak_from_this(), repetition, std::move(work));
    std::lock_guard lock{m_mutex};
    if (m_isStopped)
        timed->state = Timed::State::ended;
    else
        insert(timed, due);
    return WorkItem{std::move(timed)};
}

void WorkSchedule::insert(const std::shared_ptr<Timed>& timed, Instant due)
{
    timed->state = Timed::State::later;
    timed->key = {due, ++m_lastSerial};
    m_later.emplace(timed->key, timed);
    nextDueMayHaveChanged();
}

void WorkSchedule::cancel(Timed& timed) noexcept
{
    Work dropped; // what the work captured dies outside the lock
    std::shared_ptr<Timed> keepAlive;
    std::lock_guard lock{m_mutex};
    if (timed.state == Timed::State::later) {
        auto entry = m_later.find(timed.key);
        keepAlive = std::move(entry->second);
        m_later.erase(entry);
        nextDueMayHaveChanged();
    }
    dropped = std::move(timed.work);
    timed.work = nullptr;
    timed.state = Timed::State::ended;
}

void WorkSchedule::collectDue(Instant now)
{
    while (!m_later.empty() && m_later.begin()->first.first <= now) {
        auto timed = std::move(m_later.begin()->second);
        m_later.erase(m_later.begin());
        timed->state = Timed::State::ready;
        m_ready.push_back({nullptr, std::move(timed)});
    }
}

bool WorkSchedule::takeReady(Ready& taken)
{
    taken = std::move(m_ready.front());
    m_ready.pop_front();
    if (!taken.timed)
        return true;
    if (taken.timed->state != Timed::State::ready)
        return false; // cancelled while it stood in the line
    taken.timed->state = Timed::State::running;
    taken.work = std::move(taken.timed->work);
    return true;
}

void WorkSchedule::run(Ready& taken, std::unique_lock<std::mutex>& lock)
{
    bool isWanted = takeReady(taken);
    lock.unlock();
    if (isWanted) {
        taken.work();
        if (taken.timed)
            finish(taken.timed, taken.work);
    }
    taken = {};
    lock.lock();
}

void WorkSchedule::finish(const std::shared_ptr<Timed>& timed, Work& work)
{
    std::lock_guard lock{m_mutex};
    if (timed->state != Timed::State::running)
        return;
    timed->state = Timed::State::ended;
    if (!timed->repetition || m_isStopped)
        return;
    timed->work = std::move(work);
    auto& [interval, leeway] = *timed->repetition;
    insert(timed, followingRun(timed->key.first, interval, leeway, now()));
}

void WorkSchedule::runTurn()
{
    std::unique_lock lock{m_mutex};
    m_isInTurn = true;
    collectDue(now());
    Ready taken;
    for (auto count = m_ready.size(); count > 0 && !m_ready.empty(); --count)
        run(taken, lock);
    m_isInTurn = false;
    m_toldDue = nextDueLocked();
}

bool WorkSchedule::waitAndRun()
{
    std::unique_lock lock{m_mutex};
    while (!m_isStopped) {
        collectDue(now());
        if (!m_ready.empty()) {
            Ready taken;
            run(taken, lock);
            return !m_isStopped;
        }
        ++m_waiting;
        if (m_later.empty())
            m_condition.wait(lock);
        else
            m_condition.wait_until(lock, toSteady(m_later.begin()->first.first));
        --m_waiting;
    }
    return false;
}

int WorkSchedule::spareWorkers() const
{
    std::lock_guard lock{m_mutex};
    return m_waiting - static_cast<int>(m_ready.size());
}

void WorkSchedule::stop()
{
    std::deque<Ready> ready;
    std::map<DueKey, std::shared_ptr<Timed>> later;
    {
        std::lock_guard lock{m_mutex};
        m_isStopped = true;
        ready.swap(m_ready);
        later.swap(m_later);
        for (auto& entry : ready) {
            if (entry.timed)
                entry.timed->state = Timed::State::ended;
        }
        for (auto& [key, timed] : later)
            timed->state = Timed::State::ended;
        m_hook = nullptr;
        m_condition.notify_all();
    }
}

std::optional<Instant> WorkSchedule::nextDue() const
{
    std::lock_guard lock{m_mutex};
    return nextDueLocked();
}

std::optional<Instant> WorkSchedule::nextDueLocked() const
{
    if (!m_ready.empty())
        return Instant::min();
    if (m_later.empty())
        return std::nullopt;
    return m_later.begin()->first.first;
}

void WorkSchedule::nextDueMayHaveChanged()
{
    if (m_waiting > 0)
        m_condition.notify_one();
    if (!m_hook || m_isInTurn)
        return; // whoever runs the turn looks after it
    auto due = nextDueLocked();
    if (std::exchange(m_toldDue, due) != due)
        m_hook();
}

}
