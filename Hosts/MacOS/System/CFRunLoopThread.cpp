#include "Hosts/MacOS/System/CFRunLoopThread.h"

#include "Hosts/MacOS/System/DispatchQueue.h"

namespace quorvel {

CFRunLoopThread::CFRunLoopThread(std::string_view name, QualityOfService quality)
    : m_name(name)
    , m_quality(quality)
{
    CFRunLoopSourceContext context{};
    context.info = this;
    context.perform = [](void* thread) { static_cast<CFRunLoopThread*>(thread)->performPending(); };
    m_source
        = CFRef<CFRunLoopSourceRef>::adopt(CFRunLoopSourceCreate(kCFAllocatorDefault, 0, &context));
    m_thread = std::thread([this] { run(); });
    std::unique_lock lock(m_mutex);
    m_ready.wait(lock, [this] { return static_cast<bool>(m_runLoop); });
}

CFRunLoopThread::~CFRunLoopThread()
{
    {
        const std::lock_guard lock(m_mutex);
        m_isStopping = true;
        m_pending.clear();
    }
    CFRunLoopSourceSignal(m_source.get());
    CFRunLoopWakeUp(m_runLoop.get());
    m_thread.join();
}

void CFRunLoopThread::perform(Work work)
{
    {
        const std::lock_guard lock(m_mutex);
        m_pending.push_back(std::move(work));
    }
    CFRunLoopSourceSignal(m_source.get());
    CFRunLoopWakeUp(m_runLoop.get());
}

void CFRunLoopThread::run()
{
    pthread_setname_np(m_name.c_str());
    pthread_set_qos_class_self_np(qosClass(m_quality), 0);
    const AutoreleasePool pool;
    const CFRunLoopRef runLoop = CFRunLoopGetCurrent();
    CFRunLoopAddSource(runLoop, m_source.get(), kCFRunLoopCommonModes);
    {
        const std::lock_guard lock(m_mutex);
        m_runLoop = CFRef<CFRunLoopRef>::retain(runLoop);
    }
    m_ready.notify_one();
    // Something that runs on the loop may stop it; only the destructor ends the thread.
    while (!isStopping())
        CFRunLoopRun();
    CFRunLoopSourceInvalidate(m_source.get());
}

void CFRunLoopThread::performPending()
{
    const AutoreleasePool pool;
    for (auto& work : takePending()) {
        if (isStopping())
            break;
        work();
    }
    if (isStopping())
        CFRunLoopStop(CFRunLoopGetCurrent());
}

std::deque<Work> CFRunLoopThread::takePending()
{
    const std::lock_guard lock(m_mutex);
    return std::exchange(m_pending, {});
}

bool CFRunLoopThread::isStopping() const
{
    const std::lock_guard lock(m_mutex);
    return m_isStopping;
}

}
