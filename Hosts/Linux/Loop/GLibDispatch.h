#pragma once

#include <memory>

#include "Quorvel/Platform/Dispatch.h"

namespace quorvel::xdg {

class ThreadQueue;

/// Time and queues on GLib's default main context, whose loop belongs to the thread that created
/// this. All work of the main queue is one source, which is ready when the earliest work is due, so
/// an idle program sleeps until something happens.
class GLibDispatch final : public Dispatch {
public:
    GLibDispatch();
    ~GLibDispatch() override;

    Instant now() const override;
    Queue& main() override;
    Queue& background() override;
    std::unique_ptr<Queue> makeSerialQueue(std::string_view label, QualityOfService) override;
    std::unique_ptr<RunLoopThread> startThread(std::string_view name, QualityOfService) override;

private:
    class MainQueue;

    std::unique_ptr<MainQueue> m_main;
    std::unique_ptr<ThreadQueue> m_background; ///< last: its work may post to the main queue
};

}
