#pragma once

#include "Hosts/Posix/FdWatch.h"

namespace quorvel {

/// Watches a descriptor on the main queue; for `posix::WatchFd`. Main thread.
Subscription watchFd(int fd, posix::FdCondition, std::function<void()> onReady);

}
