#include "Tests/Support/SeamContract.h"

#include "Tests/MacSystem/Support/MacFixture.h"

namespace quorvel::test {

namespace {

/// The macOS host's services on the simulated system.
struct MacInMemory {
    LeakCheck leaks;
    FakeDesktop desktop;
    SimulatedMac mac{desktop};
    MacAccessibility tree{PrivateSymbols::load()};
    MacWindowServer server{PrivateSymbols::load(), MacWindowServer::DisplaySpaces::separate};
    MacDisplays screens;
    ProcessID owner = desktop.launch();

    MacInMemory() { screens.setScreens(desktop.displays().screens()); }

    Accessibility& accessibility() { return tree; }
    WindowServer& windowServer() { return server; }
    Displays& displays() { return screens; }
    Dispatch& dispatch() { return mac.dispatch(); }
    void open(const std::string& title) { desktop.open(owner, {.title = title}); }
    void retitle(WindowID id, const std::string& title) { desktop.retitle(id, title); }
    void close(WindowID id) { desktop.close(id); }
    bool failLists(bool value)
    {
        value ? mac.answer("CGWindowListCopyWindowInfo", {})
              : mac.forgetAnswer("CGWindowListCopyWindowInfo");
        return true;
    }
    bool runUntil(const std::function<bool()>& isDone)
    {
        for (int i = 0; i < 50 && !isDone(); ++i)
            desktop.advance(seconds(0.1));
        return isDone();
    }
};

}

INSTANTIATE_TYPED_TEST_SUITE_P(Mac, SeamContract, MacInMemory);

}
