#include "Tests/Support/SeamContract.h"

#include <cstdlib>

#include "Tests/X11/Support/DesktopFixture.h"
#include "Tests/X11/Support/HostServices.h"

namespace quorvel::x11tests {

namespace {

/// The X11 host's services on a real server under a real window manager.
template <ManagerKind kind> struct RealDesktop : DesktopFixture {
    RealDesktop() : DesktopFixture(kind)
    {
        for (const auto& [name, value] : server.environment())
            setenv(name.c_str(), value.c_str(), 1);
        host.emplace();
    }

    Accessibility& accessibility() { return host->services.accessibility(); }
    WindowServer& windowServer() { return host->services.windowServer(); }
    Displays& displays() { return host->services.displays(); }
    Dispatch& dispatch() { return host->dispatch; }
    void open(const std::string& title) { application.open({.title = title}); }
    void retitle(WindowID id, const std::string& title)
    {
        application.setTitle(*windowServer().nativeWindowNumber(id), title);
    }
    void close(WindowID id) { application.destroy(*windowServer().nativeWindowNumber(id)); }
    static bool failLists(bool) { return false; }
    bool runUntil(const std::function<bool()>& isDone) { return host->runUntil(isDone); }

    Client application{server};
    std::optional<HostServices> host;
};

using Desktops = testing::Types<RealDesktop<ManagerKind::openbox>, RealDesktop<ManagerKind::xfwm4>,
    RealDesktop<ManagerKind::metacity>, RealDesktop<ManagerKind::icewm>>;

}

}

namespace quorvel::test {

INSTANTIATE_TYPED_TEST_SUITE_P(X11, SeamContract, x11tests::Desktops);

}
