#pragma once

#include <functional>
#include <mutex>
#include <utility>

namespace quorvel {

/// Continues with the first value it gets; later ones have no effect. Any thread.
template <typename Value> class OneShotContinuation {
public:
    using Continuation = std::function<void(Value)>;

    explicit OneShotContinuation(Continuation continuation)
        : m_continuation(std::move(continuation))
    {
    }

    void resume(Value value)
    {
        Continuation continuation;
        {
            const std::scoped_lock lock{m_lock};
            continuation = std::exchange(m_continuation, nullptr);
        }
        if (continuation)
            continuation(std::move(value));
    }

private:
    std::mutex m_lock;
    Continuation m_continuation;
};

}
