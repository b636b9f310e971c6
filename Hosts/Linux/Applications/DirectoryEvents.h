#pragma once

#include "Quorvel/Platform/FileEvents.h"

namespace quorvel::xdg {

/// Changes of files, from the kernel.
class DirectoryEvents final : public FileEvents {
public:
    explicit DirectoryEvents(Dispatch& dispatch) : m_dispatch(dispatch) { }

    std::optional<Subscription> watch(const std::vector<std::string>& folders, Duration latency,
        std::function<void()> handler) override;

private:
    Dispatch& m_dispatch;
};

}
