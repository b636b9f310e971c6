#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

namespace quorvel {

/// The part of the user's disk where the program stores its data. Paths are absolute. Calls block
/// for as long as the disk takes; any of them may fail, and then nothing has changed. From any
/// thread.
class Files {
public:
    virtual ~Files() = default;

    /// Where programs store their data for the user, each in a folder of its own. Absent if the
    /// system names none.
    virtual std::optional<std::string> applicationSupportFolder() const = 0;
    /// Where programs keep what they remember from one run to the next, and nobody has set. Absent
    /// if the system names none.
    virtual std::optional<std::string> stateFolder() const = 0;
    /// Whether users of this system expect a file that could not be understood to be kept beside
    /// the new one instead of being overwritten.
    virtual bool keepsRejectedFiles() const = 0;

    /// Creates parent folders too. It may already exist.
    virtual std::error_code createFolder(const std::string& path) = 0;
    /// Whether anything exists at the path.
    virtual bool exists(const std::string& path) const = 0;
    /// The bytes of a regular file of at most `limit` bytes; absent for anything else.
    virtual std::optional<std::string> read(const std::string& path, std::size_t limit) const = 0;
    /// Anyone reading meanwhile, or after a crash or a power cut at any moment, finds the old bytes
    /// or the new ones; on success the new ones are on the disk. A link is followed.
    virtual std::error_code writeAtomically(const std::string& path, const std::string& bytes) = 0;
    /// Makes the new bytes from the current content, as `read` returns it; absent: nothing is
    /// written.
    using Revision = std::function<std::optional<std::string>(const std::optional<std::string>&)>;
    /// Writes like `writeAtomically`. Of all programs that write the file in this way, only one at
    /// a time reads and writes. Fails with `operation_canceled` if the revision is absent.
    virtual std::error_code revise(const std::string& path, std::size_t limit, const Revision&) = 0;
    /// Fails with `file_exists` rather than replace anything.
    virtual std::error_code rename(const std::string& from, const std::string& to) = 0;
    virtual std::error_code remove(const std::string& path) = 0;
    /// The names in the folder, sorted; empty if it cannot be read.
    virtual std::vector<std::string> list(const std::string& folder) const = 0;
};

}
