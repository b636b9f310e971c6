#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quorvel::posix {

/// Where the bar of one user and one display is found: a lock that says who is the bar, and a
/// socket that reaches it, in a folder which nobody else can enter.
struct ControlAddress {
    std::string lockPath;
    std::string socketPath;

    /// Makes the folder if need be: `runtimeFolder` is the session's own (absent, unusable or too
    /// long for a socket's name: a folder named after the user in `temporaryFolder`). Absent, with
    /// a one-line problem, when there is no folder to trust.
    static std::optional<ControlAddress> forDisplay(std::string_view display,
        const char* runtimeFolder, std::string_view temporaryFolder, std::string& problem);
};

/// Whether there is a folder now that is this user's and closed to all others.
bool makePrivateFolder(const std::string& path);

/// One name for all ways to write one display: ":7", ":7.0" and "unix:7" are "X7".
std::string displayFileName(std::string_view display);

}
