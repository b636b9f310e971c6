#pragma once

#include <string>
#include <system_error>

namespace quorvel::posix {

/// Replaces a file as a whole: the bytes go to "<path>.new", reach the disk, and take the file's
/// place. Another process that writes the same file waits its turn. A file that is left over from
/// a crash is used again, so there is never more than one.
std::error_code writeAtomically(const std::string& path, const std::string& bytes);

}
