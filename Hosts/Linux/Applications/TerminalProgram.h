#pragma once

#include <optional>

#include "Hosts/Linux/Applications/ExecLine.h"

namespace quorvel::xdg {

/// What to put before a command so that it runs in a terminal window: the terminal of the user's
/// choice where the system knows one, else the first that is installed. Absent if there is none.
std::optional<Arguments> terminalPrefix();

/// The path of the program that would be run under this name; absent if there is none. A name with
/// a slash is a path.
std::optional<std::string> programPath(const std::string& name);

}
