#include "Tests/Support/SeamContract.h"

#include "Tests/MacSystem/Support/MacFixture.h"
#include "Tests/Support/DesktopInMemory.h"

namespace quorvel::test {

namespace {

/// Declared before the desktop, so that it dies after it.
struct Leaks {
    LeakCheck leaks;
};

/// The macOS host's services on the simulated system.
struct MacInMemory : Leaks, DesktopInMemory {
    SimulatedMac mac{desktop};
    MacAccessibility tree{PrivateSymbols::load()};
    MacWindowServer server{PrivateSymbols::load(), MacWindowServer::DisplaySpaces::separate};
    MacDisplays screens;

    MacInMemory() { screens.setScreens(desktop.displays().screens()); }

    Accessibility& accessibility() { return tree; }
    WindowServer& windowServer() { return server; }
    Displays& displays() { return screens; }
    bool failLists(bool value)
    {
        value ? mac.answer("CGWindowListCopyWindowInfo", {})
              : mac.forgetAnswer("CGWindowListCopyWindowInfo");
        return true;
    }
};

}

INSTANTIATE_TYPED_TEST_SUITE_P(Mac, SeamContract, MacInMemory);

}
