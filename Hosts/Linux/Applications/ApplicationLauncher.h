#pragma once

#include <string>
#include <vector>

#include "Quorvel/Platform/Workspace.h"

namespace quorvel::xdg {

/// Starts installed applications. Main thread.
class ApplicationLauncher {
public:
    /// Starts what the desktop file names. With the token its first
    /// window may come to the front. A failure is told on standard error.
    void launch(const std::string& desktopFilePath, const std::string& token,
        const std::vector<std::string>& files = {});
    /// Unless the desktop file says that there is only ever one window.
    static bool opensManyWindows(const std::string& desktopFilePath);
    /// What the desktop file offers beside being started, in the user's language.
    static std::vector<ApplicationAction> actions(const std::string& desktopFilePath);
    void perform(
        const std::string& desktopFilePath, const std::string& action, const std::string& token);
    /// With the application that the user has for such files.
    static void openFile(const std::string& path);
};

}
