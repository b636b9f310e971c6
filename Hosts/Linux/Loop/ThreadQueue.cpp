#include "Hosts/Linux/Loop/ThreadQueue.h"

#include <future>

#include <pthread.h>
#include <sys/resource.h>
#include <unistd.h>

namespace quorvel::xdg {

namespace {

constexpr std::size_t kLongestThreadName = 15;

int niceness(QualityOfService quality)
{
    switch (quality) {
    case QualityOfService::background:
        return 10;
    case QualityOfService::utility:
        return 5;
    case QualityOfService::userInitiated:
    case QualityOfService::userInteractive:
        return 0;
    }
    return 0;
}

void prepareThread(const std::string& label, QualityOfService quality)
{
    pthread_setname_np(pthread_self(), label.substr(0, kLongestThreadName).c_str());
    // On Linux niceness belongs to the thread, whatever the standard says.
    if (int value = niceness(quality))
        setpriority(PRIO_PROCESS, static_cast<id_t>(gettid()), value);
}

}

void runAndWait(Queue& queue, const Work& work)
{
    auto done = std::make_shared<std::promise<void>>();
    auto future = done->get_future();
    queue.async([&work, done = std::move(done)] {
        work();
        done->set_value();
    });
    future.wait();
}

ThreadQueue::ThreadQueue(
    std::string_view label, QualityOfService quality, std::size_t maximumThreads)
    : m_label(label)
    , m_quality(quality)
    , m_maximumThreads(maximumThreads)
    , m_schedule(std::make_shared<WorkSchedule>())
{
}

ThreadQueue::~ThreadQueue()
{
    m_schedule->stop();
    for (auto& thread : m_threads)
        thread.join();
}

void ThreadQueue::async(Work work)
{
    m_schedule->post(std::move(work));
    ensureWorker(0);
}

void ThreadQueue::sync(const Work& work)
{
    runAndWait(*this, work);
}

WorkItem ThreadQueue::after(Duration delay, Work work)
{
    auto item = m_schedule->at(WorkSchedule::now() + delay, std::move(work));
    ensureWorker(1);
    return item;
}

WorkItem ThreadQueue::repeat(Duration interval, Duration leeway, Work work)
{
    auto item = m_schedule->every(interval, leeway, std::move(work));
    ensureWorker(1);
    return item;
}

void ThreadQueue::ensureWorker(int spare)
{
    std::lock_guard lock{m_mutex};
    if (m_threads.size() >= m_maximumThreads)
        return;
    if (!m_threads.empty() && m_schedule->spareWorkers() >= spare)
        return;
    m_threads.emplace_back([this] {
        prepareThread(m_label, m_quality);
        while (m_schedule->waitAndRun()) { }
    });
}

}
