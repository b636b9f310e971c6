#pragma once

#include <string>
#include <string_view>

namespace quorvel::xdg {

/// The text as one line of valid UTF-8: line breaks and controls are spaces, what is no UTF-8 is
/// U+FFFD, and what follows the first `maximumLength` characters is an ellipsis.
std::string displayText(std::string_view text, std::size_t maximumLength);

}
