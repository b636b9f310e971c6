#include "Hosts/Linux/Loop/GLibDispatch.h"

#include <algorithm>
#include <thread>

#include <glib.h>

#include "Hosts/Linux/GHandles.h"
#include "Hosts/Linux/Loop/SourceTime.h"
#include "Hosts/Linux/Loop/ThreadQueue.h"
#include "Hosts/Linux/Loop/WorkSchedule.h"

namespace quorvel::xdg {

namespace {

class LoopThread final : public RunLoopThread {
public:
    LoopThread(std::string_view name, QualityOfService quality) : m_queue(name, quality)
    {
        m_queue.sync([] { });
    }

    void perform(Work work) override { m_queue.async(std::move(work)); }

private:
    ThreadQueue m_queue;
};

std::size_t backgroundThreads()
{
    return std::clamp<std::size_t>(std::thread::hardware_concurrency(), 2, 4);
}

}

class GLibDispatch::MainQueue final : public Queue {
public:
    MainQueue()
    {
        static GSourceFuncs functions{&MainQueue::prepare, &MainQueue::check, &MainQueue::dispatch,
            nullptr, nullptr, nullptr};
        m_source.reset(reinterpret_cast<Source*>(g_source_new(&functions, sizeof(Source))));
        m_source->queue = this;
        g_source_set_static_name(m_source.get(), "main queue");
        // The loop's own thread looks before it sleeps; waking it would cost it a turn for nothing.
        m_schedule = std::make_shared<WorkSchedule>([owner = std::this_thread::get_id()] {
            if (std::this_thread::get_id() != owner)
                g_main_context_wakeup(nullptr);
        });
        g_source_attach(m_source.get(), nullptr);
    }

    ~MainQueue() override { m_schedule->stop(); }

    void async(Work work) override { m_schedule->post(std::move(work)); }
    void sync(const Work& work) override { runAndWait(*this, work); }
    WorkItem after(Duration delay, Work work) override
    {
        return m_schedule->at(WorkSchedule::now() + delay, std::move(work));
    }

private:
    WorkItem repeat(Duration interval, Duration leeway, Work work) override
    {
        return m_schedule->every(interval, leeway, std::move(work));
    }

    struct Source : GSource {
        MainQueue* queue;
    };

    static gboolean prepare(GSource* source, gint* timeout)
    {
        return isDueOrSleeps(static_cast<Source*>(source)->queue->m_schedule->nextDue(), *timeout);
    }

    static gboolean check(GSource* source)
    {
        auto due = static_cast<Source*>(source)->queue->m_schedule->nextDue();
        return due && *due <= WorkSchedule::now();
    }

    static gboolean dispatch(GSource* source, GSourceFunc, gpointer)
    {
        static_cast<Source*>(source)->queue->m_schedule->runTurn();
        return G_SOURCE_CONTINUE;
    }

    std::shared_ptr<WorkSchedule> m_schedule;
    GSourceHandle<Source> m_source;
};

GLibDispatch::GLibDispatch()
    : m_main(std::make_unique<MainQueue>())
    , m_background(std::make_unique<ThreadQueue>(
          "background", QualityOfService::background, backgroundThreads()))
{
}

GLibDispatch::~GLibDispatch() = default;

Instant GLibDispatch::now() const
{
    return WorkSchedule::now();
}

Queue& GLibDispatch::main()
{
    return *m_main;
}

Queue& GLibDispatch::background()
{
    return *m_background;
}

std::unique_ptr<Queue> GLibDispatch::makeSerialQueue(
    std::string_view label, QualityOfService quality)
{
    return std::make_unique<ThreadQueue>(label, quality);
}

std::unique_ptr<RunLoopThread> GLibDispatch::startThread(
    std::string_view name, QualityOfService quality)
{
    return std::make_unique<LoopThread>(name, quality);
}

}
