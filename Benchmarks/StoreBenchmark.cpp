// What the store of windows and the whole bar cost by the number of windows, on one space: all of
// them seen for the first time, one of them opened and closed, and the focus going from one to the
// next. On the desktop in memory, without drawing.

#include <memory>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

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

void populate(benchmark::State& state)
{
    FakeDesktop desktop;
    fill(desktop, int(state.range(0)));
    const auto platform = desktop.platform();
    for (auto _ : state) {
        WindowStore store{platform.dispatch, platform.accessibility, platform.windowServer,
            platform.displays, platform.workspace, platform.trace};
        store.populate();
        if (store.windows().size() != std::size_t(state.range(0))) {
            state.SkipWithError("not every window is tracked");
            return;
        }
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

void storeSizes(benchmark::internal::Benchmark* family)
{
    family->RangeMultiplier(10)
        ->Range(10, 10'000)
        ->Unit(benchmark::kMicrosecond)
        ->Complexity(benchmark::oN);
}

BENCHMARK(populate)->Apply(storeSizes);
BENCHMARK(openAndClose)->RangeMultiplier(10)->Range(10, 1'000)->Unit(benchmark::kMicrosecond);

}

}
