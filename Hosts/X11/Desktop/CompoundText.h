#pragma once

#include <string>
#include <string_view>

namespace quorvel::xdg::x11 {

/// Text in the encoding that Xlib's clients write when a title is not Latin-1 and they know no
/// better: ISO 2022 with the character sets of the Compound Text standard, and UTF-8 segments.
/// Returns UTF-8; what has an unknown set or is no character becomes U+FFFD. Any bytes are taken.
std::string decodeCompoundText(std::string_view bytes);

}
