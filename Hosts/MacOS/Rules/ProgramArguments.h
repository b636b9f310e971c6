#pragma once

#include <string>
#include <vector>

namespace quorvel {

/// The arguments without those that the system's own frameworks read or the system adds, such as
/// `-NSTreatUnknownArgumentsAsOpen NO` and `-AppleLanguages (ar)`: each is a name and, after it, a
/// value that begins with no dash.
std::vector<std::string> withoutSystemArguments(const std::vector<std::string>&);

/// The major version of the system from what it says of itself. To programs that were built before
/// it, macOS 26 says 16: the numbers from 16 to 25 were never given.
int systemMajorVersion(long reported);

}
