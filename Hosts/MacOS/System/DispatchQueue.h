#pragma once

#include <memory>
#include <string_view>

#include "Hosts/MacOS/System/System.h"
#include "Quorvel/Platform/Dispatch.h"

/// The C++ type of a system queue. In Objective-C, `dispatch_queue_t` is a reference-counted
/// object, so a member of that type would change the class below.
struct dispatch_queue_s;

namespace quorvel {

struct QueueState;

/// One of the system's dispatch queues.
class DispatchQueue final : public Queue {
public:
    enum class Kind {
        main, ///< the main thread's, run by its run loop
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

private:
    [[nodiscard]] WorkItem repeat(Duration interval, Duration leeway, Work) override;

    Kind m_kind;
    dispatch_queue_s* m_queue;
    std::shared_ptr<QueueState> m_state;
};

qos_class_t qosClass(QualityOfService);

}
