// What a refresh of the bar's model costs, by the number of windows on ten spaces, grouped and not,
// when one window has changed since the last, when every one has, and when nothing has.

#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "Benchmarks/Sizes.h"
#include "Quorvel/Core/BadgeService.h"
#include "Quorvel/Core/BarViewModel.h"
#include "Quorvel/Core/UserSettings.h"
#include "Quorvel/Skylight/WindowStore.h"
#include "Tests/Support/FakeDesktop.h"

namespace quorvel::test {

namespace {

constexpr int kSpaces = 10;
constexpr int kApplications = 40;

enum class Change { none, one, all };

class Bar {
public:
    Bar(int windows, bool isGrouped)
    {
        auto& display = m_desktop.model().displays.front();
        display.spaces.clear();
        for (std::uint64_t i = 1; i <= kSpaces; ++i)
            display.spaces.push_back({SpaceID{i}});
        for (int i = 0; i < kApplications; ++i)
            m_pids.push_back(m_desktop.launch({.name = "Application " + std::to_string(i),
                .bundleIdentifier = "com.example.application" + std::to_string(i)}));
        for (int i = 0; i < windows; ++i)
            m_windows.push_back(m_desktop.open(m_pids[std::size_t(i) % kApplications],
                {.title = "A window with a title of the usual length",
                    .spaces = {SpaceID{std::uint64_t(i % kSpaces + 1)}}}));
        m_settings.setGroupWindowsByApp(isGrouped);
        m_store.populate();
        m_model.emplace(m_store, m_settings, m_badges, m_platform);
    }

    std::size_t trackedWindows() const { return m_store.windows().size(); }
    void refresh() { m_model->refresh(); }
    void change(Change what)
    {
        ++m_round;
        if (what == Change::one)
            retitle(m_windows[std::size_t(m_round) % m_windows.size()]);
        else if (what == Change::all)
            std::ranges::for_each(m_windows, [this](WindowID id) { retitle(id); });
    }

private:
    void retitle(WindowID id)
    {
        auto& window = m_desktop.window(id);
        window.title = "A window with a title, changed for the time " + std::to_string(m_round);
        m_store.handleAXEvent({std::string{ax::titleChanged}, window.pid,
            m_desktop.accessibility().windowElement(id), id});
        m_desktop.accessibility().forgetMessages();
    }

    FakeDesktop m_desktop;
    Platform m_platform = m_desktop.platform();
    UserSettings m_settings{m_platform.files, m_platform.loginItem, m_platform.application,
        m_platform.dispatch, m_platform.trace};
    BadgeService m_badges{m_platform.dispatch, m_platform.launchServices, m_platform.trace};
    WindowStore m_store{m_platform.dispatch, m_platform.accessibility, m_platform.windowServer,
        m_platform.displays, m_platform.workspace, m_platform.trace};
    std::optional<BarViewModel> m_model;
    std::vector<ProcessID> m_pids;
    std::vector<WindowID> m_windows;
    int m_round = 0;
};

void refresh(benchmark::State& state, bool isGrouped, Change change)
{
    Bar bar(int(state.range(0)), isGrouped);
    if (bar.trackedWindows() != std::size_t(state.range(0))) {
        state.SkipWithError("not every window is tracked");
        return;
    }
    for (auto _ : state) {
        state.PauseTiming();
        bar.change(change);
        state.ResumeTiming();
        bar.refresh();
    }
    state.SetComplexityN(state.range(0));
}

BENCHMARK_CAPTURE(refresh, single_nothing_changed, false, Change::none)->Apply(sizes);
BENCHMARK_CAPTURE(refresh, single_one_changed, false, Change::one)->Apply(sizes);
BENCHMARK_CAPTURE(refresh, single_all_changed, false, Change::all)->Apply(sizes);
BENCHMARK_CAPTURE(refresh, grouped_nothing_changed, true, Change::none)->Apply(sizes);
BENCHMARK_CAPTURE(refresh, grouped_one_changed, true, Change::one)->Apply(sizes);
BENCHMARK_CAPTURE(refresh, grouped_all_changed, true, Change::all)->Apply(sizes);

}

}
