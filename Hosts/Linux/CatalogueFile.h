#pragma once

#include <string_view>

namespace quorvel::xdg {

/// Whether these bytes are a whole catalogue of gettext's (an MO file, as its manual describes it).
/// The C library believes what the file says of itself, and reads beyond the end of one that a full
/// disk has cut short.
bool isWholeCatalogue(std::string_view bytes);

}
