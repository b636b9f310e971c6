#pragma once

#include <cstddef>
#include <optional>
#include <string>

namespace quorvel::xdg {

/// The bytes of a regular file of at most `limit` bytes, else absent. A pipe or device in its place
/// does not block.
std::optional<std::string> readFile(const std::string& path, std::size_t limit);

/// The first bytes of a regular file; fewer if it is shorter.
std::optional<std::string> readStart(const std::string& path, std::size_t count);

}
