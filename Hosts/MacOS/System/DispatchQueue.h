#pragma once

#include <string>

#include "Hosts/MacOS/System/DispatchTimer.h"

namespace quorvel {

/// One of the system's dispatch queues.
class DispatchQueue final : public Queue {
public:
    enum class Kind {
        main, ///< the main thread's, which its run loop serves
        serial,
        concurrent,
    };

    explicit DispatchQueue(
        Kind, std::string_view label = {}, QualityOfService = QualityOfService::utility);
    ~DispatchQueue() override;
    DispatchQueue(const DispatchQueue&) = delete;
    DispatchQueue& operator=(const DispatchQueue&) = delete;

    void async(Work) override;
    void sync(const Work&) override;
    [[nodiscard]] WorkItem after(Duration delay, Work) override;
    [[nodiscard]] WorkItem every(Duration interval, Work) override;

private:
    Kind m_kind;
    dispatch_queue_t m_queue;
    std::shared_ptr<QueueState> m_state = std::make_shared<QueueState>();
};

qos_class_t qosClass(QualityOfService);

}
