#pragma once

#include "Hosts/MacOS/System/AccessibilityElement.h"
#include "Hosts/MacOS/System/MacAccessibility.h"
#include "Hosts/MacOS/System/MacDisplays.h"
#include "Hosts/MacOS/System/MacWindowServer.h"
#include "Tests/MacSystem/Support/SimulatedMac.h"
#include "Tests/Support/Matchers.h"

namespace quorvel::test {

/// The macOS host's own services on a simulated system. What they leak fails the test.
struct MacFixture : testing::Test {
    LeakCheck leaks;
    FakeDesktop desktop;
    SimulatedMac mac{desktop};

    MacWindowServer makeWindowServer() const
    {
        return {PrivateSymbols::load(), MacWindowServer::DisplaySpaces::separate};
    }
    static AXElement windowElement(WindowID id)
    {
        const auto ref = SimulatedMac::createWindowElement(id);
        return makeElement(CFRef<AXUIElementRef>::adopt(ref));
    }
    static std::vector<CGWindowInfo> windowsOf(const WindowServer& server)
    {
        std::vector<CGWindowInfo> windows;
        server.enumerateWindows(kWindowListExcludeDesktopElements,
            [&](const CGWindowInfo& info) { windows.push_back(info); });
        return windows;
    }
};

}
