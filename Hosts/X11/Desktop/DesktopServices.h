#pragma once

#include <memory>

namespace quorvel {
class Accessibility;
class ApplicationMatching;
class Dispatch;
class Displays;
class LaunchServices;
class Peeking;
class WindowServer;
class Workspace;
}

namespace quorvel::xdg {
class DesktopEntries;
class Icons;
class LaunchTokens;
class SharedModel;
struct PanelEnvironment;
}

namespace quorvel::xdg::x11 {

class Connection;
class Monitors;

/// The services, answered from the mirror of the desktop. The constructor waits for the first
/// complete reading, so everything that exists is known when it returns. Main thread.
class DesktopServices {
public:
    DesktopServices(Connection&, Dispatch&, Monitors&, PanelEnvironment&, DesktopEntries&, Icons&);
    ~DesktopServices();
    DesktopServices(const DesktopServices&) = delete;
    DesktopServices& operator=(const DesktopServices&) = delete;

    const SharedModel& model() const;
    Accessibility& accessibility();
    WindowServer& windowServer();
    Displays& displays();
    Workspace& workspace();
    LaunchServices& launchServices();
    ApplicationMatching& applicationMatching();
    Peeking& peeking();
    LaunchTokens& launchTokens();

private:
    struct Parts;
    std::unique_ptr<Parts> m_parts;
};

}
