#pragma once

#include <cstdint>
#include <string>

namespace quorvel::x11 {

/// Starts installed applications. Main thread.
class ApplicationLauncher {
public:
    /// Starts what the desktop file names. `time` is the server's, of the user's action: with it
    /// the manager lets the first window come to the front. A failure is told on standard error.
    void launch(const std::string& desktopFilePath, std::uint32_t time);

private:
    std::string nextStartupID(std::uint32_t time);

    unsigned m_launches = 0;
};

}
