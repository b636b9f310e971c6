#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "Quorvel/Platform/Dispatch.h"
#include "Quorvel/Platform/Published.h"

namespace quorvel {

/// Tells of changes on the disk. Main thread.
class FileEvents {
public:
    virtual ~FileEvents() = default;

    /// From now on calls the handler after anything in or below the folders has appeared, changed
    /// or gone: once for what happens within `latency`. Where the system allows it, a folder that
    /// does not exist is watched for too. Absent if the system cannot watch.
    [[nodiscard]] virtual std::optional<Subscription> watch(
        const std::vector<std::string>& folders, Duration latency, std::function<void()> handler)
        = 0;
};

}
