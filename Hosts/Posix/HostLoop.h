#pragma once

#include <chrono>
#include <functional>
#include <string>

#include "Hosts/Posix/FdWatch.h"

namespace quorvel::posix {

/// What the control socket needs from the host's main loop. Each calls back until its subscription
/// is dropped, which may happen inside the callback.
struct HostLoop {
    WatchFd watchFd;
    /// When something is created in the folder or removed from it, or the folder itself is removed.
    /// Spurious calls are allowed.
    std::function<Subscription(const std::string& folder, std::function<void()> onChange)>
        watchFolder;
    /// Once.
    std::function<Subscription(std::chrono::milliseconds, std::function<void()>)> after;
};

}
