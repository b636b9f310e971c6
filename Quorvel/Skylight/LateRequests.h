#pragma once

#include <atomic>
#include <map>
#include <memory>

#include "Quorvel/Platform/Dispatch.h"
#include "Quorvel/Platform/Identifiers.h"
#include "Quorvel/Platform/WeakOwner.h"

namespace quorvel {

/// Requests to applications that have no time at present, made in order on a queue of its own,
/// where waiting for them harms nobody. Main thread.
class LateRequests {
public:
    explicit LateRequests(Dispatch&);
    LateRequests(const LateRequests&) = delete;
    LateRequests& operator=(const LateRequests&) = delete;

    /// What is added from now on gives a window the focus. Of the last activation what has not
    /// begun is dropped: it would take the focus away again.
    void beginActivation();
    void continueActivation() { m_isDropped = m_isActivationDropped; }
    /// What is added from now on is made whatever the user does next.
    void beginOther() { m_isDropped = std::make_shared<std::atomic_bool>(false); }

    void add(ProcessID, Work);
    /// Whether the process has requests that are not made yet, so that further ones have to follow
    /// them.
    bool isWaiting(ProcessID pid) const { return m_waiting.contains(pid); }

private:
    using Flag = std::shared_ptr<std::atomic_bool>;

    void didMake(ProcessID);

    Queue& m_main;
    std::map<ProcessID, int> m_waiting;
    Flag m_isActivationDropped = std::make_shared<std::atomic_bool>(false);
    Flag m_isDropped = m_isActivationDropped;
    WeakOwner<LateRequests> m_weak{*this};
    std::unique_ptr<Queue> m_queue;
};

}
