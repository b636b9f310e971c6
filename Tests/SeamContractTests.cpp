#include "Tests/Support/SeamContract.h"

#include "Tests/Support/FakeDesktop.h"

namespace quorvel::test {

namespace {

struct DesktopInMemory {
    FakeDesktop desktop;
    ProcessID owner = desktop.launch();

    Accessibility& accessibility() { return desktop.accessibility(); }
    WindowServer& windowServer() { return desktop.windowServer(); }
    Displays& displays() { return desktop.displays(); }
    Dispatch& dispatch() { return desktop.dispatch(); }
    void open(const std::string& title) { desktop.open(owner, {.title = title}); }
    void retitle(WindowID id, const std::string& title) { desktop.retitle(id, title); }
    void close(WindowID id) { desktop.close(id); }
    bool failLists(bool value)
    {
        desktop.windowServer().failWindowLists(value);
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

INSTANTIATE_TYPED_TEST_SUITE_P(InMemory, SeamContract, DesktopInMemory);

}
