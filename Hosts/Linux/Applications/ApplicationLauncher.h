#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <gio/gio.h>

#include "Quorvel/Platform/Workspace.h"

namespace quorvel::xdg {

struct UnrefObject {
    void operator()(void* object) const { g_object_unref(object); }
};
using LaunchContext = std::unique_ptr<GAppLaunchContext, UnrefObject>;

/// Starts installed applications. Main thread.
class ApplicationLauncher {
public:
    /// Starts what the desktop file names. `time` is the server's, of the user's action: with it
    /// the manager lets the first window come to the front. A failure is told on standard error.
    void launch(const std::string& desktopFilePath, std::uint32_t time,
        const std::vector<std::string>& files = {});
    /// Unless the desktop file says that there is only ever one window.
    static bool opensManyWindows(const std::string& desktopFilePath);
    /// What the desktop file offers beside being started, in the user's language.
    static std::vector<ApplicationAction> actions(const std::string& desktopFilePath);
    void perform(const std::string& desktopFilePath, const std::string& action, std::uint32_t time);
    /// With the application that the user has for such files.
    static void openFile(const std::string& path);

private:
    std::string nextStartupID(std::uint32_t time);
    LaunchContext makeContext(std::uint32_t time);

    unsigned m_launches = 0;
};

}
