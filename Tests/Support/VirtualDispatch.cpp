#include "Tests/Support/VirtualDispatch.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "Tests/Support/Contract.h"

namespace quorvel::test {

namespace {

/// More work than this without the clock moving is a loop that would never end.
constexpr int kEndlessLoop = 1'000'000;

[[noreturn]] void deadlock(const std::string& label, const char* what)
{
    std::fprintf(stderr, "deadlock on \"%s\": %s\n", label.c_str(), what);
    std::abort();
}

}

struct VirtualDispatch::Item final : WorkItem::Handle {
    VirtualDispatch* dispatch = nullptr; // null once it will not run any more
    VirtualQueue* queue = nullptr;
    Key key{};
    Duration interval{};
    bool isTimer = false;
    bool isBusy = false;
    Work work;

    void cancel() noexcept override
    {
        if (!dispatch)
            return;
        std::exchange(dispatch, nullptr)->m_items.erase(key);
        if (!isBusy)
            std::exchange(work, nullptr); // what it holds may die here
    }
    bool isPending() const noexcept override { return dispatch != nullptr; }
};

/// The queue of a `Dispatch`, and the run loop of a thread: both are a line of work.
class VirtualQueue final : public Queue, public RunLoopThread {
public:
    VirtualQueue(VirtualDispatch& dispatch, std::string label)
        : m_dispatch(dispatch)
        , m_label(std::move(label))
    {
        m_dispatch.m_threads.insert(this);
    }
    ~VirtualQueue() override
    {
        if (m_dispatch.isRunning(*this))
            deadlock(m_label, "destroyed by its own work");
        m_dispatch.dropWork(*this);
        m_dispatch.m_threads.erase(this);
    }

    void async(Work work) override
    {
        m_dispatch.schedule(*this, m_dispatch.now(), {}, false, std::move(work));
    }
    void perform(Work work) override { async(std::move(work)); }
    void sync(const Work& work) override
    {
        if (m_dispatch.isRunning(*this)
            || (this == m_dispatch.m_main.get() && m_dispatch.isOnMain()))
            deadlock(m_label, "sync from the queue itself");
        m_dispatch.runReadyWork(*this);
        m_dispatch.m_running.push_back(this);
        work();
        m_dispatch.m_running.pop_back();
    }
    WorkItem after(Duration delay, Work work) override
    {
        auto due = m_dispatch.now() + std::max(delay, Duration::zero());
        return WorkItem{m_dispatch.schedule(*this, due, {}, true, std::move(work))};
    }
    const std::string& label() const { return m_label; }

private:
    WorkItem repeat(Duration interval, Duration, Work work) override
    {
        return WorkItem{
            m_dispatch.schedule(*this, m_dispatch.now(), interval, true, std::move(work))};
    }

    VirtualDispatch& m_dispatch;
    std::string m_label;
};

VirtualDispatch::VirtualDispatch()
    : m_main(std::make_unique<VirtualQueue>(*this, "main"))
    , m_background(std::make_unique<VirtualQueue>(*this, "background"))
    , m_world(std::make_unique<VirtualQueue>(*this, "world"))
{
}

VirtualDispatch::~VirtualDispatch()
{
    while (!m_items.empty()) {
        auto item = m_items.begin()->second; // it takes itself off the list
        item->cancel();
    }
}

Queue& VirtualDispatch::main()
{
    return *m_main;
}
Queue& VirtualDispatch::background()
{
    return *m_background;
}
Queue& VirtualDispatch::world()
{
    return *m_world;
}

std::unique_ptr<Queue> VirtualDispatch::makeSerialQueue(std::string_view label, QualityOfService)
{
    return std::make_unique<VirtualQueue>(*this, std::string{label});
}

std::unique_ptr<RunLoopThread> VirtualDispatch::startThread(std::string_view name, QualityOfService)
{
    return std::make_unique<VirtualQueue>(*this, std::string{name});
}

void VirtualDispatch::advance(Duration duration)
{
    if (!m_running.empty())
        deadlock(currentLabel(), "time was moved from inside work");
    auto end = m_now + duration;
    int atOnce = 0;
    while (!m_items.empty() && m_items.begin()->first.due <= std::max(end, m_now)) {
        auto item = m_items.begin()->second;
        atOnce = item->key.due > m_now ? 0 : atOnce + 1;
        if (atOnce > kEndlessLoop)
            deadlock(item->queue->label(), "work brings about work without end");
        m_now = std::max(m_now, item->key.due);
        run(item);
    }
    m_now = std::max(m_now, end);
}

std::size_t VirtualDispatch::pendingTimers() const
{
    return static_cast<std::size_t>(std::ranges::count_if(m_items, [this](const auto& entry) {
        return entry.second->isTimer && entry.second->queue != m_world.get();
    }));
}

bool VirtualDispatch::isOnMain() const
{
    return m_running.empty() || m_running.back() == m_main.get()
        || m_running.back() == m_world.get();
}

bool VirtualDispatch::isOn(const RunLoopThread& thread) const
{
    return !m_running.empty() && static_cast<const RunLoopThread*>(m_running.back()) == &thread;
}

bool VirtualDispatch::hasEnded(const RunLoopThread& thread) const
{
    return !m_threads.contains(&thread);
}

RunLoopThread* VirtualDispatch::thread() const
{
    return isOnMain() ? nullptr : m_running.back();
}

std::string VirtualDispatch::currentLabel() const
{
    return m_running.empty() ? m_main->label() : m_running.back()->label();
}

std::shared_ptr<VirtualDispatch::Item> VirtualDispatch::schedule(
    VirtualQueue& queue, Instant due, Duration interval, bool isTimer, Work work)
{
    auto item = std::make_shared<Item>();
    item->dispatch = this;
    item->queue = &queue;
    item->interval = interval;
    item->isTimer = isTimer;
    item->work = std::move(work);
    enqueue(item, due);
    return item;
}

void VirtualDispatch::enqueue(const std::shared_ptr<Item>& item, Instant due)
{
    item->key = {due, m_sequence++};
    m_items.emplace(item->key, item);
}

void VirtualDispatch::run(const std::shared_ptr<Item>& item)
{
    m_items.erase(item->key);
    bool isRepeating = item->interval > Duration::zero();
    if (!isRepeating)
        item->dispatch = nullptr;
    item->isBusy = true;
    m_running.push_back(item->queue);
    item->work();
    m_running.pop_back();
    item->isBusy = false;
    if (isRepeating && item->dispatch)
        reschedule(item);
    else
        item->work = nullptr;
}

void VirtualDispatch::reschedule(const std::shared_ptr<Item>& item)
{
    auto due = item->key.due + item->interval;
    if (due <= m_now)
        due += (m_now - due) / item->interval * item->interval + item->interval;
    enqueue(item, due);
}

void VirtualDispatch::runReadyWork(VirtualQueue& queue)
{
    for (auto at = m_items.begin(); at != m_items.end() && at->first.due <= m_now;) {
        auto item = at->second;
        if (item->queue != &queue) {
            ++at;
            continue;
        }
        run(item);
        at = m_items.begin();
    }
}

void VirtualDispatch::dropWork(VirtualQueue& queue)
{
    std::vector<std::shared_ptr<Item>> dropped;
    for (auto& [key, item] : m_items) {
        if (item->queue == &queue)
            dropped.push_back(item);
    }
    for (auto& item : dropped)
        item->cancel();
}

bool VirtualDispatch::isRunning(const VirtualQueue& queue) const
{
    return std::ranges::find(m_running, &queue) != m_running.end();
}

}
