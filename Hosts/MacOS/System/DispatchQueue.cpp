#include "Hosts/MacOS/System/DispatchQueue.h"

#include <string>
#include <type_traits>

#include "Hosts/MacOS/System/DispatchTimer.h"

namespace quorvel {

namespace {

static_assert(std::is_same_v<dispatch_queue_t, dispatch_queue_s*>);

struct Task {
    std::shared_ptr<QueueState> state;
    Work work;
};

void runTask(void* context)
{
    const std::unique_ptr<Task> task{static_cast<Task*>(context)};
    if (!task->state->isClosed)
        task->work();
}

void runBorrowed(void* context)
{
    (*static_cast<const Work*>(context))();
}

void doNothing(void*)
{
}

dispatch_queue_t makeQueue(DispatchQueue::Kind kind, std::string_view label, qos_class_t quality)
{
    if (kind == DispatchQueue::Kind::main) {
        const dispatch_queue_t queue = dispatch_get_main_queue();
        dispatch_retain(queue);
        return queue;
    }
    const dispatch_queue_attr_t order
        = kind == DispatchQueue::Kind::serial ? DISPATCH_QUEUE_SERIAL : DISPATCH_QUEUE_CONCURRENT;
    // The calls that workers make autorelease; without this their pools may stay full for long.
    const dispatch_queue_attr_t pooled = dispatch_queue_attr_make_with_autorelease_frequency(
        order, DISPATCH_AUTORELEASE_FREQUENCY_WORK_ITEM);
    return dispatch_queue_create(
        std::string{label}.c_str(), dispatch_queue_attr_make_with_qos_class(pooled, quality, 0));
}

}

qos_class_t qosClass(QualityOfService quality)
{
    switch (quality) {
    case QualityOfService::background:
        return QOS_CLASS_BACKGROUND;
    case QualityOfService::utility:
        return QOS_CLASS_UTILITY;
    case QualityOfService::userInitiated:
        return QOS_CLASS_USER_INITIATED;
    case QualityOfService::userInteractive:
        return QOS_CLASS_USER_INTERACTIVE;
    }
    return QOS_CLASS_DEFAULT;
}

DispatchQueue::DispatchQueue(Kind kind, std::string_view label, QualityOfService quality)
    : m_kind(kind)
    , m_queue(makeQueue(kind, label, qosClass(quality)))
    , m_state(std::make_shared<QueueState>())
{
}

DispatchQueue::~DispatchQueue()
{
    m_state->isClosed = true;
    // The main queue is destroyed on the main thread: nothing of it can be running.
    if (m_kind != Kind::main)
        dispatch_barrier_sync_f(m_queue, nullptr, doNothing);
    dispatch_release(m_queue);
}

void DispatchQueue::async(Work work)
{
    dispatch_async_f(m_queue, new Task{m_state, std::move(work)}, runTask);
}

void DispatchQueue::sync(const Work& work)
{
    dispatch_sync_f(m_queue, const_cast<Work*>(&work), runBorrowed);
}

WorkItem DispatchQueue::after(Duration delay, Work work)
{
    return WorkItem{DispatchTimer::start(
        m_queue, m_state, DispatchTimer::Mode::once, delay, {}, std::move(work))};
}

WorkItem DispatchQueue::repeat(Duration interval, Duration leeway, Work work)
{
    return WorkItem{DispatchTimer::start(
        m_queue, m_state, DispatchTimer::Mode::repeating, interval, leeway, std::move(work))};
}

}
