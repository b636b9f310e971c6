#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace quorvel::xdg {

/// What is taken of a list that another program hands over.
namespace uriListLimits {
inline constexpr std::size_t bytes = 256 * 1024;
inline constexpr std::size_t files = 1024;
}

/// The absolute paths of this machine's files in a text/uri-list. Comments, other schemes, other
/// machines' files and what is malformed are left out. A list beyond the limits gives none: half
/// of what was dropped is not what anybody meant.
std::vector<std::string> localPaths(std::string_view list, std::string_view hostName);

}
