// What a keystroke in the launcher costs, by the number of stored applications: the search, for
// queries that match few, many and none, and the discovery that prepares it.

#include <array>
#include <string>

#include <benchmark/benchmark.h>

#include "Benchmarks/Sizes.h"
#include "Quorvel/Core/AppLauncher.h"
#include "Tests/Support/FakeDesktop.h"

namespace quorvel::test {

namespace {

constexpr std::array kWords{"Disk", "Editor", "Music", "Photo", "Straße", "Übersicht", "Web",
    "Remote", "Настройки", "Player", "Browser", "Writer"};

/// Names of two words and a number, like those of a machine with very many applications.
class Catalogue {
public:
    explicit Catalogue(std::size_t apps)
    {
        for (std::size_t i = 0; i < apps; ++i) {
            auto word
                = [i](std::size_t step) { return std::string{kWords[i / step % kWords.size()]}; };
            auto name = word(1) + ' ' + word(kWords.size()) + ' ' + std::to_string(i);
            m_desktop.bundles().install("/Applications/" + std::to_string(i) + ".app",
                {.identifier = "org.example.app" + std::to_string(i),
                    .displayName = name,
                    .genericName = "Program of a Kind",
                    .keywords = {"one", "two words", "three"},
                    .executable = "program-" + std::to_string(i)});
        }
        m_desktop.drain();
    }

    std::vector<AppInfo> search(const std::string& query) const
    {
        return m_launcher.searchResults(m_launcher.allApps().value(), query);
    }
    void refresh()
    {
        m_launcher.refresh();
        m_desktop.drain();
    }

private:
    FakeDesktop m_desktop;
    AppLauncher m_launcher{m_desktop.platform()};
};

void search(benchmark::State& state, const std::string& query)
{
    const Catalogue catalogue{static_cast<std::size_t>(state.range(0))};
    std::size_t found = 0;
    for (auto _ : state) {
        auto results = catalogue.search(query);
        found = results.size();
        benchmark::DoNotOptimize(results);
    }
    state.counters["found"] = static_cast<double>(found);
    state.SetComplexityN(state.range(0));
}

void discover(benchmark::State& state)
{
    Catalogue catalogue{static_cast<std::size_t>(state.range(0))};
    for (auto _ : state)
        catalogue.refresh();
    state.SetComplexityN(state.range(0));
}

BENCHMARK_CAPTURE(search, oneLetter, "e")->Apply(sizes);
BENCHMARK_CAPTURE(search, threeLetters, "edi")->Apply(sizes);
BENCHMARK_CAPTURE(search, otherScript, "настро")->Apply(sizes);
BENCHMARK_CAPTURE(search, keyword, "prog")->Apply(sizes);
BENCHMARK_CAPTURE(search, nothing, "zzzz")->Apply(sizes);
BENCHMARK_CAPTURE(search, everything, "")->Apply(sizes);
BENCHMARK(discover)->Apply(sizes);

}

}
