#pragma once

#include <cstdint>
#include <functional>
#include <memory>

namespace quorvel::xdg {

/// Reports once when a process has ended, without polling. Main thread.
class ProcessEnd {
public:
    enum class Watch { running, ended, unavailable };

    ~ProcessEnd();
    ProcessEnd(const ProcessEnd&) = delete;
    ProcessEnd& operator=(const ProcessEnd&) = delete;

    /// Null where there is nothing to wait for, with the reason in `watch`.
    static std::unique_ptr<ProcessEnd> of(
        std::uint32_t pid, Watch& watch, std::function<void()> onEnd);

private:
    ProcessEnd(int descriptor, std::function<void()> onEnd);

    int m_descriptor;
    unsigned m_source = 0;
    std::function<void()> m_onEnd;
};

}
