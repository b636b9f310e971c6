#include "Tests/Support/SeamContract.h"

#include "Tests/Support/DesktopInMemory.h"

namespace quorvel::test {

namespace {

struct FakeServices : DesktopInMemory {
    Accessibility& accessibility() { return desktop.accessibility(); }
    WindowServer& windowServer() { return desktop.windowServer(); }
    Displays& displays() { return desktop.displays(); }
    bool failLists(bool value)
    {
        desktop.windowServer().failWindowLists(value);
        return true;
    }
};

}

INSTANTIATE_TYPED_TEST_SUITE_P(InMemory, SeamContract, FakeServices);

}
