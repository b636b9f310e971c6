#include "Hosts/MacOS/System/FdSource.h"

#include <memory>

#include <fcntl.h>

#include "Hosts/MacOS/System/System.h"

namespace quorvel {

namespace {

/// What the source calls. A source may use its descriptor until its cancellation is through, which
/// is later than the subscriber closes it: so it watches one of its own and closes that itself.
struct Watch {
    posix::UniqueFd fd; ///< none for a timer
    std::function<void()> onEvent;
    bool isDropped = false;
};

class EventSource {
public:
    EventSource(posix::UniqueFd fd, dispatch_source_type_t type, uintptr_t mask,
        std::function<void()> onEvent)
        : m_watch(new Watch{std::move(fd), std::move(onEvent)})
        , m_source(dispatch_source_create(type,
              m_watch->fd ? static_cast<uintptr_t>(m_watch->fd.get()) : 0, mask,
              dispatch_get_main_queue()))
    {
        dispatch_set_context(m_source, m_watch);
        dispatch_source_set_event_handler_f(m_source, [](void* context) {
            auto* watch = static_cast<Watch*>(context);
            if (!watch->isDropped)
                watch->onEvent();
        });
        dispatch_source_set_cancel_handler_f(
            m_source, [](void* context) { delete static_cast<Watch*>(context); });
    }
    ~EventSource()
    {
        m_watch->isDropped = true;
        dispatch_source_cancel(m_source);
        dispatch_release(m_source);
    }
    EventSource(const EventSource&) = delete;
    EventSource& operator=(const EventSource&) = delete;

    dispatch_source_t raw() const { return m_source; }
    void resume() { dispatch_resume(m_source); }

private:
    Watch* m_watch; ///< the source's, until it is cancelled
    dispatch_source_t m_source;
};

Subscription started(std::shared_ptr<EventSource> source)
{
    source->resume();
    return Subscription{std::move(source)};
}

Subscription watchFd(int fd, posix::FdCondition condition, std::function<void()> onReady)
{
    posix::UniqueFd own{fcntl(fd, F_DUPFD_CLOEXEC, 0)};
    if (!own)
        return {};
    return started(std::make_shared<EventSource>(std::move(own),
        condition == posix::FdCondition::readable ? DISPATCH_SOURCE_TYPE_READ
                                                  : DISPATCH_SOURCE_TYPE_WRITE,
        0, std::move(onReady)));
}

Subscription watchFolder(const std::string& folder, std::function<void()> onChange)
{
    posix::UniqueFd opened{open(folder.c_str(), O_EVTONLY | O_CLOEXEC)};
    if (!opened)
        return {};
    return started(std::make_shared<EventSource>(std::move(opened), DISPATCH_SOURCE_TYPE_VNODE,
        DISPATCH_VNODE_WRITE | DISPATCH_VNODE_DELETE | DISPATCH_VNODE_RENAME, std::move(onChange)));
}

Subscription callAfter(std::chrono::milliseconds time, std::function<void()> callback)
{
    auto source = std::make_shared<EventSource>(
        posix::UniqueFd{}, DISPATCH_SOURCE_TYPE_TIMER, 0, std::move(callback));
    const std::chrono::nanoseconds delay = time;
    dispatch_source_set_timer(
        source->raw(), dispatch_time(DISPATCH_TIME_NOW, delay.count()), DISPATCH_TIME_FOREVER, 0);
    return started(std::move(source));
}

}

posix::HostLoop hostLoop()
{
    return {watchFd, watchFolder, callAfter};
}

}
