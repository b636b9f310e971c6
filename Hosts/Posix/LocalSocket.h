#pragma once

#include <optional>
#include <string>

#include <sys/types.h>
#include <sys/un.h>

#include "Hosts/Posix/FdWatch.h"

namespace quorvel::posix {

/// A local stream socket that programs started later do not inherit.
UniqueFd makeLocalSocket();
/// The path must fit into an address.
sockaddr_un socketName(const std::string& path);
bool setNonBlocking(int fd);
bool setCloseOnExec(int fd);
/// Whether the last call on a non-blocking socket failed only for now.
bool wouldBlock();
/// The process and user at the other end.
std::optional<uid_t> peerUser(int fd);

}
