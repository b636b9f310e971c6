#pragma once

#include <chrono>
#include <functional>
#include <string>

#include "Hosts/Posix/FdWatch.h"

namespace quorvel::posix {

/// What the control socket asks of the host's main loop. Each calls back until its subscription is
/// dropped, which may happen inside the call.
struct HostLoop {
    WatchFd watchFd;
    /// When something is made in the folder or goes from it, or it goes itself. It may call more
    /// often.
    std::function<Subscription(const std::string& folder, std::function<void()> onChange)>
        watchFolder;
    /// Once.
    std::function<Subscription(std::chrono::milliseconds, std::function<void()>)> after;
};

}
