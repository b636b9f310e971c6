#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "Quorvel/Platform/Text.h"

namespace quorvel {

/// The text as lines of at most this width, broken at spaces, and within a word only where it is
/// wider than a line. What does not fit into the last line is left in it, to be elided as it is
/// drawn. Main thread.
std::vector<std::string> wrappedLines(
    const Text&, std::string_view utf8, const TextStyle&, double width, std::size_t mostLines);

}
