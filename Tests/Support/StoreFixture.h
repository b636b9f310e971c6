#pragma once

#include "Quorvel/Skylight/WindowStore.h"
#include "Tests/Support/FakeDesktop.h"
#include "Tests/Support/Matchers.h"

namespace quorvel::test {

/// A window store on a desktop, without anything around it: the test calls what the runtime would.
struct StoreFixture : testing::Test {
    FakeDesktop desktop;
    Platform platform = desktop.platform();
    WindowStore store{platform.dispatch, platform.accessibility, platform.windowServer,
        platform.displays, platform.workspace, platform.trace};
    int changes = 0;

    StoreFixture()
    {
        store.onChange = [this] { ++changes; };
    }

    bool isTracked(WindowID id) const { return store.window(id) != nullptr; }

    /// One scan of the process, `delay` from now.
    void scanAfter(ProcessID pid, Duration delay)
    {
        store.startLifecycleMonitoring(pid, delay);
        desktop.advance(delay);
    }
    /// The window server no longer lists it, though it is there.
    void hide(WindowID id) { desktop.window(id).inServerFrom = Instant::max(); }
    void show(WindowID id) { desktop.window(id).inServerFrom = {}; }

    AXWindowEvent event(WindowID id, std::string_view notification)
    {
        return {std::string{notification}, desktop.window(id).pid,
            desktop.accessibility().windowElement(id), id};
    }
};

}
