#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "Quorvel/Platform/LaunchServices.h"

namespace quorvel::posix {

struct ToolBounds {
    std::chrono::milliseconds time{5000};
    std::size_t output = std::size_t{4} << 20; ///< bytes, for each of both streams
};

/// Runs the program without input and with only a search path in its environment, so that it prints
/// the same for every user, and waits for its end. A program that exceeds a limit is killed. Absent
/// only if it cannot be started.
std::optional<ToolResult> runTool(
    const std::string& path, const std::vector<std::string>& arguments, ToolBounds = {});

}
