#include "Quorvel/Skylight/LateRequests.h"

#include <utility>

namespace quorvel {

LateRequests::LateRequests(Dispatch& dispatch)
    : m_main(dispatch.main())
    , m_queue(
          dispatch.makeSerialQueue("com.quorvel.lateRequests", QualityOfService::userInteractive))
{
}

void LateRequests::beginActivation()
{
    *m_isActivationDropped = true;
    m_isActivationDropped = std::make_shared<std::atomic_bool>(false);
    continueActivation();
}

void LateRequests::add(ProcessID pid, Work request)
{
    ++m_waiting[pid];
    m_queue->async([&main = m_main, weak = m_weak.reference(), pid, isDropped = m_isDropped,
                       request = std::move(request)] {
        if (!*isDropped)
            request();
        main.async([weak, pid] {
            if (auto* self = weak.get())
                self->didMake(pid);
        });
    });
}

void LateRequests::didMake(ProcessID pid)
{
    auto found = m_waiting.find(pid);
    if (found != m_waiting.end() && --found->second == 0)
        m_waiting.erase(found);
}

}
