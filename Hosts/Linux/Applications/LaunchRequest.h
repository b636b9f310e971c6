#pragma once

#include <string>
#include <vector>

namespace quorvel::xdg {

/// What the user wants started.
struct LaunchRequest {
    std::string desktopFile; ///< its path
    std::vector<std::string> files{}; ///< to open with it: absolute paths, or addresses
    std::string action{}; ///< one of its actions; empty: the application itself
    std::string token{}; ///< allows its first window to come to the front
};

}
