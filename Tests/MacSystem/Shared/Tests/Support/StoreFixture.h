#pragma once

// Found before the fixture of the same name, so that the tests of the window store run once more
// over the macOS host: same desktop, same faults, but every answer goes through the system's types.

#include <algorithm>

#include "Quorvel/Skylight/WindowStore.h"
#include "Tests/MacSystem/Support/MacFixture.h"

namespace quorvel::test {

struct StoreFixture : MacFixture {
    MacAccessibility macAccessibility{PrivateSymbols::load()};
    MacWindowServer macWindowServer = makeWindowServer();
    MacDisplays macDisplays;
    Platform platform{mac.dispatch(), macAccessibility, macWindowServer, macDisplays,
        desktop.workspace(), desktop.screenCapture(), desktop.program(), desktop.surfaces(),
        desktop.platform().text, desktop.control(), desktop.trace()};
    WindowStore store{platform.dispatch, platform.accessibility, platform.windowServer,
        platform.displays, platform.workspace, platform.trace};
    int changes = 0;
    std::vector<std::string> traced;
    Subscription screensChanged = desktop.displays().parametersDidChange.subscribe(
        [this] { macDisplays.setScreens(desktop.displays().screens()); });

    StoreFixture()
    {
        macDisplays.setScreens(desktop.displays().screens());
        store.onChange = [this] { ++changes; };
        desktop.trace().setSink([this](std::string_view line) { traced.emplace_back(line); });
    }

    bool isTracked(WindowID id) const { return store.window(id) != nullptr; }
    bool hasTraced(std::string_view start) const
    {
        return std::ranges::any_of(
            traced, [&](const std::string& line) { return line.starts_with(start); });
    }

    /// One scan of the process, `delay` from now.
    void scanAfter(ProcessID pid, Duration delay)
    {
        store.startLifecycleMonitoring(pid, delay);
        desktop.advance(delay);
    }
    void hide(WindowID id) { desktop.window(id).inServerFrom = Instant::max(); }
    void show(WindowID id) { desktop.window(id).inServerFrom = {}; }

    AXWindowEvent event(WindowID id, std::string_view notification)
    {
        return {std::string{notification}, desktop.window(id).pid, windowElement(id), id};
    }

    /// When the windows were listed, in seconds since `start`.
    std::vector<double> scanTimes(Instant start)
    {
        std::vector<double> times;
        for (auto at : desktop.windowServer().listings())
            times.push_back(std::chrono::duration<double>(at - start).count());
        return times;
    }
};

}
