#pragma once

#include <string>
#include <vector>

namespace quorvel {

/// The arguments without those that the system's frameworks read or add, such as
/// `-NSTreatUnknownArgumentsAsOpen NO` and `-AppleLanguages (ar)`: each is a name followed by a
/// value that does not begin with a dash.
std::vector<std::string> withoutSystemArguments(const std::vector<std::string>&);

/// The major version of the system, from what it reports. macOS 26 reports 16 to programs that were
/// built before it: the numbers from 16 to 25 were never used.
int systemMajorVersion(long reported);

}
