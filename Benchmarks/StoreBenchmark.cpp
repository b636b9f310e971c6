// What the store of windows and the whole bar cost by the number of windows, on one space: all of
// them seen for the first time, all of them looked at again, and one opened and closed. On the
// desktop in memory, without drawing.

#include <memory>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "Benchmarks/Sizes.h"
#include "Quorvel/Core/UserSettings.h"
#include "Quorvel/Quorvel.h"
#include "Quorvel/Skylight/WindowStore.h"
#include "Tests/Support/FakeDesktop.h"

namespace quorvel::test {

namespace {

constexpr int kApplications = 20;

std::vector<ProcessID> fill(FakeDesktop& desktop, int windows)
{
    std::vector<ProcessID> pids;
    for (int i = 0; i < kApplications; ++i)
        pids.push_back(desktop.launch({.name = "Application " + std::to_string(i),
            .bundleIdentifier = "com.example.application" + std::to_string(i)}));
    for (int i = 0; i < windows; ++i)
        desktop.open(pids[std::size_t(i % kApplications)],
            {.title = "A window with a title of the usual length"});
    return pids;
}

WindowStore makeStore(const Platform& platform)
{
    return {platform.dispatch, platform.accessibility, platform.windowServer, platform.displays,
        platform.workspace, platform.trace};
}

void populate(benchmark::State& state)
{
    FakeDesktop desktop;
    fill(desktop, int(state.range(0)));
    for (auto _ : state) {
        auto store = makeStore(desktop.platform());
        store.populate();
        if (store.windows().size() != std::size_t(state.range(0))) {
            state.SkipWithError("not every window is tracked");
            return;
        }
    }
    state.SetComplexityN(state.range(0));
}

/// The three scans of every application that follow a window which nobody has explained yet. They
/// find nothing new.
void reconcile(benchmark::State& state)
{
    FakeDesktop desktop;
    const auto pids = fill(desktop, int(state.range(0)));
    desktop.drain();
    auto store = makeStore(desktop.platform());
    store.populate();
    for (auto _ : state) {
        for (auto pid : pids)
            store.scheduleDeferredScan(pid);
        desktop.advance(seconds(3));
        desktop.accessibility().forgetMessages();
    }
    state.SetComplexityN(state.range(0));
}

class RunningBar {
public:
    explicit RunningBar(int windows) : m_pids(fill(m_desktop, windows))
    {
        m_runtime = std::make_unique<Runtime>(m_desktop.platform());
        m_runtime->userSettings().setGroupWindowsByApp(false);
        QuorvelApp::launch(*m_runtime);
        m_desktop.advance(seconds(15));
    }

    void openAndClose()
    {
        const auto window = m_desktop.open(m_pids.front(), {.title = "One more"});
        m_desktop.advance(seconds(3));
        m_desktop.close(window);
        m_desktop.advance(seconds(3));
    }

private:
    FakeDesktop m_desktop;
    std::vector<ProcessID> m_pids;
    std::unique_ptr<Runtime> m_runtime;
};

void openAndClose(benchmark::State& state)
{
    RunningBar bar(int(state.range(0)));
    for (auto _ : state)
        bar.openAndClose();
    state.SetComplexityN(state.range(0));
}

BENCHMARK(populate)->Apply(sizes);
BENCHMARK(reconcile)->Apply(sizes);
BENCHMARK(openAndClose)->Apply(sizes);

}

}
