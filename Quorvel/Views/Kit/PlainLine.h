#pragma once

#include <string>
#include <string_view>

namespace quorvel {

/// Any text as one line of valid UTF-8: tabs and each line break become a space, other controls go,
/// and invalid bytes become U+FFFD.
std::string plainLine(std::string_view utf8);

/// The first code point of valid UTF-8; 0 for an empty text.
char32_t firstCodePoint(std::string_view utf8);

}
