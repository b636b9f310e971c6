#pragma once

#include <string>
#include <string_view>

namespace quorvel::xdg {

/// The text as one line of valid UTF-8: line breaks and controls become spaces, invalid UTF-8
/// becomes U+FFFD, and anything after the first `maximumLength` characters becomes an ellipsis.
std::string displayText(std::string_view text, std::size_t maximumLength);

}
