// What reading others' texts costs, by how many entries they have: the list of running
// applications, a command line, and a settings file with many pins. Time has to grow with the
// length, no faster.

#include <string>

#include <benchmark/benchmark.h>

#include "Hosts/Linux/Applications/ExecLine.h"
#include "Quorvel/Core/LSAppInfoOutput.h"
#include "Quorvel/Core/UserSettingsCoding.h"

namespace quorvel::test {

namespace {

void parserSizes(benchmark::internal::Benchmark* family)
{
    family->RangeMultiplier(10)
        ->Range(10, 10'000)
        ->Unit(benchmark::kMicrosecond)
        ->Complexity(benchmark::oN);
}

void listOfApplications(benchmark::State& state)
{
    std::string text;
    for (int i = 0; i < state.range(0); ++i) {
        const auto number = std::to_string(i);
        text += number + ") \"Application\" ASN:0x0-0x" + std::to_string(1000 + i)
            + ":\n    bundleID=\"com.example.a" + number + "\"\n    pid = " + number
            + " type=\"Foreground\"\n";
    }
    for (auto _ : state)
        benchmark::DoNotOptimize(parseListOutput(text));
    state.SetComplexityN(state.range(0));
}

void commandLine(benchmark::State& state)
{
    std::string line = "program";
    for (int i = 0; i < state.range(0); ++i)
        line += " \"an argument \\\\ with\\\" quotes\" --plain";
    for (auto _ : state)
        benchmark::DoNotOptimize(xdg::wordsOf(line));
    state.SetComplexityN(state.range(0));
}

void settingsFile(benchmark::State& state)
{
    UserSettingsData data;
    for (int i = 0; i < state.range(0); ++i)
        data.pinnedApps.push_back({"com.example.a" + std::to_string(i), 1});
    const auto bytes = encodeUserSettings(data);
    for (auto _ : state)
        benchmark::DoNotOptimize(decodeUserSettings(bytes, {}));
    state.SetComplexityN(state.range(0));
}

BENCHMARK(listOfApplications)->Apply(parserSizes);
BENCHMARK(commandLine)->Apply(parserSizes);
BENCHMARK(settingsFile)->Apply(parserSizes);

}

}
