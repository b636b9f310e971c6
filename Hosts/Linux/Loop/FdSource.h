#pragma once

#include <functional>

#include "Hosts/Posix/FdWatch.h"

namespace quorvel::xdg {

/// Watches a descriptor on GLib's loop; for `posix::WatchFd`. Main thread.
Subscription watchFd(int fd, posix::FdCondition, std::function<void()> onReady);

}
