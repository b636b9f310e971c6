#pragma once

#include <string>
#include <vector>

#include "Quorvel/Platform/Workspace.h"

namespace quorvel::xdg {

/// Starts installed applications. Main thread.
class ApplicationLauncher {
public:
    /// Starts the program that the desktop file names. The token allows its first window to come to
    /// the front. A failure is reported on standard error.
    void launch(const std::string& desktopFilePath, const std::string& token,
        const std::vector<std::string>& files = {});
    /// True unless the desktop file says that there is only ever one window.
    static bool opensManyWindows(const std::string& desktopFilePath);
    /// The actions that the desktop file offers besides starting, in the user's language.
    static std::vector<ApplicationAction> actions(const std::string& desktopFilePath);
    void perform(
        const std::string& desktopFilePath, const std::string& action, const std::string& token);
    /// Opens the file with the user's application for such files.
    static void openFile(const std::string& path);
};

}
