#pragma once

#include <gtest/gtest.h>

#include "Tests/Support/FakeDesktop.h"

namespace quorvel::test {

/// What the window store's tests stand on: a desktop and a platform that answers from it. A file of
/// this name that is found first puts another host between the two.
struct StoreHost : testing::Test {
    FakeDesktop desktop;
    Platform platform = desktop.platform();

    AXElement windowElement(WindowID id) { return desktop.accessibility().windowElement(id); }
};

}
