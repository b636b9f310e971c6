#pragma once

#include "Hosts/Posix/HostLoop.h"

namespace quorvel {

/// The main queue. Main thread.
posix::HostLoop hostLoop();

}
