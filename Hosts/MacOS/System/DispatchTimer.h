#pragma once

#include <atomic>
#include <memory>
#include <mutex>

#include "Hosts/MacOS/System/System.h"
#include "Quorvel/Platform/Dispatch.h"

namespace quorvel {

/// Whether a queue still accepts work; shared by the queue and all work passed to it.
struct QueueState {
    std::atomic<bool> isClosed = false;
};

/// One delayed or repeating piece of work on a dispatch queue. The timer source keeps it alive
/// until it is cancelled, which the last firing does too.
class DispatchTimer final : public WorkItem::Handle,
                            public std::enable_shared_from_this<DispatchTimer> {
public:
    enum class Mode { once, repeating };

    static std::shared_ptr<DispatchTimer> start(dispatch_queue_t, std::shared_ptr<QueueState>, Mode,
        Duration delayOrInterval, Duration leeway, Work);

    DispatchTimer(dispatch_source_t, std::shared_ptr<QueueState>, Mode, Work);
    ~DispatchTimer() override;
    DispatchTimer(const DispatchTimer&) = delete;
    DispatchTimer& operator=(const DispatchTimer&) = delete;

    void cancel() noexcept override;
    bool isPending() const noexcept override;

private:
    using SharedWork = std::shared_ptr<const Work>;

    void schedule(Duration delayOrInterval, Duration leeway);
    void fire();
    SharedWork takeForRun();

    dispatch_source_t m_source;
    std::shared_ptr<QueueState> m_state;
    Mode m_mode;
    mutable std::mutex m_mutex;
    SharedWork m_work; ///< null once it has begun (one-shot) or was cancelled
};

}
