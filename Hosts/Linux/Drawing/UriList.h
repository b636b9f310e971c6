#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace quorvel::xdg {

/// The limits for a list that another program sends.
namespace uriListLimits {
inline constexpr std::size_t bytes = 256 * 1024;
inline constexpr std::size_t files = 1024;
}

/// The absolute paths of this machine's files in a text/uri-list. Comments, other schemes, other
/// machines' files and malformed lines are left out. A list beyond the limits gives none, since
/// nobody means to drop half of the files.
std::vector<std::string> localPaths(std::string_view list, std::string_view hostName);

}
