#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "Hosts/Posix/ControlAddress.h"
#include "Quorvel/Platform/ControlChannel.h"

namespace quorvel::posix {

/// Sends the arguments to the running bar and waits for its reply. Absent when no bar listens; if a
/// bar does not answer in time, the reply says so.
std::optional<ControlReply> requestOfBar(const ControlAddress&,
    const std::vector<std::string>& arguments, std::chrono::milliseconds limit);

}
