#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quorvel::posix {

/// Where the bar of one user and one display is found: a lock that shows which process is the bar,
/// and a socket to reach it, in a folder that nobody else can enter.
struct ControlAddress {
    std::string lockPath;
    std::string socketPath;

    /// Makes the folder if necessary: `runtimeFolder` is the session's own (if absent, unusable or
    /// too long for a socket's name: a folder named after the user in `temporaryFolder`). Absent,
    /// with a one-line problem, when no folder can be trusted.
    static std::optional<ControlAddress> forDisplay(std::string_view display,
        const char* runtimeFolder, std::string_view temporaryFolder, std::string& problem);
};

/// Whether the folder exists now, belongs to this user and is closed to all others.
bool makePrivateFolder(const std::string& path);

/// One name for all spellings of one display: ":7", ":7.0" and "unix:7" are "X7".
std::string displayFileName(std::string_view display);

}
