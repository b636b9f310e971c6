#pragma once

#include "Hosts/MacOS/System/DispatchQueue.h"

namespace quorvel {

/// The system's queues and timers. Like the timers, the clock stops while the machine sleeps.
class MacDispatch final : public Dispatch {
public:
    Instant now() const override;
    Queue& main() override { return m_main; }
    Queue& background() override { return m_background; }
    std::unique_ptr<Queue> makeSerialQueue(std::string_view label, QualityOfService) override;
    std::unique_ptr<RunLoopThread> startThread(std::string_view name, QualityOfService) override;

private:
    DispatchQueue m_main{DispatchQueue::Kind::main};
    DispatchQueue m_background{DispatchQueue::Kind::concurrent, "com.quorvel.background"};
};

}
