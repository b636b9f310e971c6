#pragma once

#include <functional>
#include <memory>

namespace quorvel::xdg {

/// Tells when the system has woken from sleep, where logind is there to say so. Never waits:
/// without a system bus nothing is ever told. Main thread.
class SleepWatch {
public:
    explicit SleepWatch(std::function<void()> onWake);
    ~SleepWatch();
    SleepWatch(const SleepWatch&) = delete;
    SleepWatch& operator=(const SleepWatch&) = delete;

private:
    struct Bus;
    std::unique_ptr<Bus> m_bus;
};

}
