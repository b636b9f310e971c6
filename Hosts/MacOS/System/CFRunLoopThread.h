#pragma once

#include <condition_variable>
#include <deque>
#include <mutex>
#include <string>
#include <thread>

#include "Hosts/MacOS/System/CFRef.h"
#include "Quorvel/Platform/Dispatch.h"

namespace quorvel {

/// A thread with a CoreFoundation run loop. Work arrives through a source of its own, which also
/// keeps the loop from ending for lack of sources.
class CFRunLoopThread final : public RunLoopThread {
public:
    /// Returns once the run loop exists.
    CFRunLoopThread(std::string_view name, QualityOfService);
    ~CFRunLoopThread() override;
    CFRunLoopThread(const CFRunLoopThread&) = delete;
    CFRunLoopThread& operator=(const CFRunLoopThread&) = delete;

    void perform(Work) override;

private:
    void run();
    void performPending();
    std::deque<Work> takePending();
    bool isStopping() const;

    std::string m_name;
    QualityOfService m_quality;
    mutable std::mutex m_mutex;
    std::condition_variable m_ready;
    CFRef<CFRunLoopRef> m_runLoop;
    CFRef<CFRunLoopSourceRef> m_source;
    std::deque<Work> m_pending;
    bool m_isStopping = false;
    std::thread m_thread; // last: it uses all of the above
};

}
