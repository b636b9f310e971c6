#pragma once

#include <functional>
#include <optional>
#include <string>
#include <system_error>

namespace quorvel::posix {

/// Replaces a file as a whole: the bytes are written to "<path>.new", flushed to the disk, and
/// moved into the file's place. Another process that writes the same file waits its turn. A file
/// left over from a crash is reused, so there is never more than one.
std::error_code writeAtomically(const std::string& path, const std::string& bytes);

/// The same with bytes that are made while all other writers wait. If there are none, the file
/// stays unchanged: `operation_canceled`.
std::error_code reviseAtomically(
    const std::string& path, const std::function<std::optional<std::string>()>& makeBytes);

}
