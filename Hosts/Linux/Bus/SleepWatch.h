#pragma once

#include <functional>
#include <memory>

namespace quorvel::xdg {

/// Reports when the system has woken from sleep, where logind can say so. Never blocks: without a
/// system bus nothing is ever reported. Main thread.
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
