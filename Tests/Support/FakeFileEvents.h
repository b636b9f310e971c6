#pragma once

#include <memory>
#include <string>
#include <vector>

#include "Quorvel/Platform/FileEvents.h"

namespace quorvel::test {

class VirtualDispatch;

/// Tells of what a test says has changed, as late as the program allows.
class FakeFileEvents final : public FileEvents {
public:
    explicit FakeFileEvents(VirtualDispatch& dispatch) : m_dispatch(dispatch) { }

    std::optional<Subscription> watch(const std::vector<std::string>& folders, Duration latency,
        std::function<void()> handler) override;

    /// Something appeared, changed or went.
    void change(const std::string& path);

    void setRefuses(bool value) { m_refuses = value; }
    /// The folders of each watch that still goes on.
    std::vector<std::vector<std::string>> watched() const;

private:
    struct Watch {
        std::vector<std::string> folders;
        Duration latency{};
        std::function<void()> handler;
        WorkItem report;
    };

    VirtualDispatch& m_dispatch;
    bool m_refuses = false;
    std::vector<std::weak_ptr<Watch>> m_watches;
};

}
