// What one change costs the whole program, from the application's notice to the painted chip, with
// 200 windows on 10 spaces of 2 displays: by how many of the bars have been shown before. In
// memory, without drawing.

#include <memory>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "Quorvel/Core/BarManager.h"
#include "Quorvel/Core/UserSettings.h"
#include "Quorvel/Quorvel.h"
#include "Tests/Support/FakeDesktop.h"

namespace quorvel::test {

namespace {

constexpr int kWindows = 200;
constexpr int kSpacesOfDisplay = 5;
constexpr int kApplications = 20;

enum class Seen { shownBars, allBars };

class Desktop {
public:
    explicit Desktop(Seen seen)
    {
        auto first = m_desktop.model().displays.front();
        auto second = first.at({first.frame.width, 0});
        second.number = DisplayNumber{2};
        second.identifier = "second";
        fill(first, 1);
        fill(second, kSpacesOfDisplay + 1);
        m_desktop.setDisplays({first, second});
        for (int i = 0; i < kApplications; ++i)
            m_pids.push_back(m_desktop.launch({.name = "Application " + std::to_string(i),
                .bundleIdentifier = "com.example.application" + std::to_string(i)}));
        for (int i = 0; i < kWindows; ++i)
            open(i);
        m_runtime = std::make_unique<Runtime>(m_desktop.platform());
        m_runtime->userSettings().setGroupWindowsByApp(false);
        QuorvelApp::launch(*m_runtime);
        m_desktop.advance(seconds(15));
        if (seen == Seen::allBars) {
            for (auto space : {2, 3, 4, 5, 1, 7, 8, 9, 10, 6}) {
                m_desktop.activateSpace(SpaceID{std::uint64_t(space)});
                m_desktop.advance(seconds(5));
            }
        }
    }

    bool hasEveryChip() const
    {
        std::size_t chips = 0;
        for (auto& [space, ofSpace] : m_runtime->barManager()->viewModel().chipsBySpace.value())
            chips += ofSpace.size();
        return chips == kWindows;
    }
    /// A window of any space, then the time until its title is believed.
    void retitle()
    {
        ++m_round;
        m_desktop.retitle(m_windows[std::size_t(m_round * 7) % m_windows.size()],
            "A title, changed for the time " + std::to_string(m_round));
        m_desktop.advance(seconds(0.5));
    }
    void openOne()
    {
        ++m_round;
        open(m_round);
        m_desktop.advance(seconds(0.5));
    }
    void closeIt()
    {
        m_desktop.close(m_windows.back());
        m_windows.pop_back();
        m_desktop.advance(seconds(5));
    }
    void forget()
    {
        for (auto* panel : m_desktop.surfaces().panels())
            panel->forgetPaints();
        m_desktop.accessibility().forgetMessages();
    }

private:
    static void fill(FakeDisplay& display, std::uint64_t first)
    {
        display.spaces.clear();
        for (std::uint64_t i = 0; i < kSpacesOfDisplay; ++i)
            display.spaces.push_back({SpaceID{first + i}});
        display.current = SpaceID{first};
    }
    void open(int i)
    {
        auto space = std::uint64_t(i % (2 * kSpacesOfDisplay) + 1);
        auto x = space > kSpacesOfDisplay ? 1540.0 : 100.0;
        m_windows.push_back(m_desktop.open(m_pids[std::size_t(i / 10) % kApplications],
            {.title = "A window of the usual name",
                .frame = {x, 100, 800, 600},
                .spaces = {SpaceID{space}}}));
    }

    FakeDesktop m_desktop;
    std::unique_ptr<Runtime> m_runtime;
    std::vector<ProcessID> m_pids;
    std::vector<WindowID> m_windows;
    int m_round = 0;
};

void bars(benchmark::State& state, Seen seen, void (Desktop::*change)(), void (Desktop::*undo)())
{
    Desktop desktop(seen);
    if (!desktop.hasEveryChip()) {
        state.SkipWithError("not every window has a chip");
        return;
    }
    for (auto _ : state) {
        (desktop.*change)();
        state.PauseTiming();
        if (undo)
            (desktop.*undo)();
        desktop.forget();
        state.ResumeTiming();
    }
}

BENCHMARK_CAPTURE(bars, title_shown_bars, Seen::shownBars, &Desktop::retitle, nullptr)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(bars, title_all_bars, Seen::allBars, &Desktop::retitle, nullptr)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(bars, open_shown_bars, Seen::shownBars, &Desktop::openOne, &Desktop::closeIt)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(bars, open_all_bars, Seen::allBars, &Desktop::openOne, &Desktop::closeIt)
    ->Unit(benchmark::kMicrosecond);

}

}
