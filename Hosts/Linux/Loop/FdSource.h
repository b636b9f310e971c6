#pragma once

#include "Hosts/Posix/HostLoop.h"

namespace quorvel::xdg {

/// Watches a descriptor on GLib's loop; for `posix::WatchFd`. Main thread.
Subscription watchFd(int fd, posix::FdCondition, std::function<void()> onReady);

/// GLib's loop. Main thread.
posix::HostLoop hostLoop();

}
