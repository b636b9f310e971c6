#pragma once

#include "Quorvel/Platform/FileEvents.h"

namespace quorvel {

/// Streams of file-system events, on the main queue.
class MacFileEvents final : public FileEvents {
public:
    std::optional<Subscription> watch(const std::vector<std::string>& folders, Duration latency,
        std::function<void()> handler) override;
};

}
