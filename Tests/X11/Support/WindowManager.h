#pragma once

#include <memory>
#include <string>

#include "Tests/X11/Support/Desktop.h"
#include "Tests/X11/Support/Process.h"
#include "Tests/X11/Support/XServer.h"

namespace quorvel::x11tests {

enum class ManagerKind { openbox, xfwm4, metacity, icewm };
/// Prints the parameter in the names of tests.
std::string nameOf(ManagerKind);

/// A window manager of the distribution, with its own defaults (four desktops).
class WindowManager {
public:
    /// Returns once it manages the desktop.
    WindowManager(const XServer&, Desktop&, ManagerKind);
    /// Of a test that failed it prints what the manager does: one that hangs looks like a fault of
    /// ours.
    ~WindowManager();
    WindowManager(const WindowManager&) = delete;
    WindowManager& operator=(const WindowManager&) = delete;

    bool isManaging();
    /// Ends it and returns once it has gone.
    void end(int signal);
    /// Starts the next one and does not wait.
    void beginStart();
    /// Starts one that takes over, and returns once the present one has ended.
    void beginReplace();
    void waitUntilManaging();

private:
    std::unique_ptr<Process> launch(const std::vector<std::string>& arguments);

    const XServer& m_server;
    Desktop& m_desktop;
    ManagerKind m_kind;
    std::unique_ptr<Process> m_process;
};

}
