#pragma once

#include <string>
#include <string_view>

namespace quorvel::xdg::x11 {

/// Text in the encoding that Xlib's clients use for a title that is not Latin-1: ISO 2022 with the
/// character sets of the Compound Text standard, and UTF-8 segments. Returns UTF-8; an unknown set
/// or an invalid character becomes U+FFFD. Accepts any bytes.
std::string decodeCompoundText(std::string_view bytes);

}
