#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "Hosts/Linux/Loop/WorkSchedule.h"

namespace quorvel::xdg {

/// A queue with threads of its own, which start when there is work for them: with one thread a
/// serial queue, with more a concurrent one.
class ThreadQueue final : public Queue {
public:
    ThreadQueue(std::string_view label, QualityOfService, std::size_t maximumThreads = 1);
    ~ThreadQueue() override;

    void async(Work) override;
    void sync(const Work&) override;
    WorkItem after(Duration delay, Work) override;

private:
    WorkItem repeat(Duration interval, Duration leeway, Work) override;
    void ensureWorker(int spare);

    const std::string m_label;
    const QualityOfService m_quality;
    const std::size_t m_maximumThreads;
    const std::shared_ptr<WorkSchedule> m_schedule;
    std::mutex m_mutex;
    std::vector<std::thread> m_threads;
};

/// Runs the work on the queue and waits for it; also returns when the queue drops it.
void runAndWait(Queue&, const Work&);

}
