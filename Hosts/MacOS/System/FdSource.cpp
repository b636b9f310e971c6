#include "Hosts/MacOS/System/FdSource.h"

#include <memory>

#include <fcntl.h>

#include "Hosts/MacOS/System/System.h"

namespace quorvel {

namespace {

/// What the source calls. A source may use its descriptor until its cancellation is through, which
/// is later than the subscriber closes it: so it watches a duplicate and closes that itself.
struct Watch {
    posix::UniqueFd fd;
    std::function<void()> onReady;
    bool isDropped = false;
};

class FdSource {
public:
    FdSource(posix::UniqueFd fd, posix::FdCondition condition, std::function<void()> onReady)
        : m_watch(new Watch{std::move(fd), std::move(onReady)})
        , m_source(dispatch_source_create(condition == posix::FdCondition::readable
                  ? DISPATCH_SOURCE_TYPE_READ
                  : DISPATCH_SOURCE_TYPE_WRITE,
              static_cast<uintptr_t>(m_watch->fd.get()), 0, dispatch_get_main_queue()))
    {
        dispatch_set_context(m_source, m_watch);
        dispatch_source_set_event_handler_f(m_source, [](void* context) {
            auto* watch = static_cast<Watch*>(context);
            if (!watch->isDropped)
                watch->onReady();
        });
        dispatch_source_set_cancel_handler_f(
            m_source, [](void* context) { delete static_cast<Watch*>(context); });
        dispatch_resume(m_source);
    }
    ~FdSource()
    {
        m_watch->isDropped = true;
        dispatch_source_cancel(m_source);
        dispatch_release(m_source);
    }
    FdSource(const FdSource&) = delete;
    FdSource& operator=(const FdSource&) = delete;

private:
    Watch* m_watch; ///< the source's, until it is cancelled
    dispatch_source_t m_source;
};

}

Subscription watchFd(int fd, posix::FdCondition condition, std::function<void()> onReady)
{
    posix::UniqueFd own{fcntl(fd, F_DUPFD_CLOEXEC, 0)};
    if (!own)
        return {};
    return Subscription{std::make_shared<FdSource>(std::move(own), condition, std::move(onReady))};
}

}
