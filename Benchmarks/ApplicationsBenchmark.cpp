// What 5,000 installed applications cost: the catalogue lists and reads all of them, in the
// background.
#include <benchmark/benchmark.h>

#include "Hosts/Linux/Applications/DesktopEntryFile.h"
#include "Hosts/Linux/Applications/DesktopEntryIndex.h"
#include "Hosts/Linux/Applications/DesktopKeyFile.h"
#include "Hosts/Linux/Applications/EntryRules.h"
#include "Tests/Host/fixtures/InstalledApplications.h"

namespace {

using namespace quorvel::xdg;

constexpr int kApplications = 5000;

/// As long as those of a desktop with many translations.
std::string typicalLines(int number)
{
    std::string lines = "GenericName=Thing " + std::to_string(number) + "\nComment=Does things\n";
    for (int language = 0; language < 40; ++language)
        lines += "Name[l" + std::to_string(language) + "]=Ein Ding mit einem Namen\n" + "Comment[l"
            + std::to_string(language) + "]=Tut etwas mit Dingen aller Art\n";
    return lines + "Keywords=one;two;three;\nIcon=thing\nExec=sh -c thing %U\nTryExec=sh\n"
        + "Categories=Utility;\nStartupWMClass=Thing" + std::to_string(number) + "\n";
}

struct Installed {
    Installed()
    {
        for (int number = 0; number < kApplications; ++number)
            paths.push_back(
                applications.install("thing-" + std::to_string(number), typicalLines(number)));
    }
    quorvel::test::InstalledApplications applications;
    std::vector<std::string> paths;
};

void listEntries(benchmark::State& state)
{
    Installed installed;
    const std::vector folders{installed.applications.path("user/applications")};
    for (auto _ : state)
        benchmark::DoNotOptimize(DesktopEntryIndex{folders});
}
BENCHMARK(listEntries)->Unit(benchmark::kMillisecond);

void readEntries(benchmark::State& state)
{
    Installed installed;
    for (auto _ : state) {
        for (const auto& path : installed.paths)
            benchmark::DoNotOptimize(DesktopEntryFile::read(path));
    }
}
BENCHMARK(readEntries)->Unit(benchmark::kMillisecond);

void decideWhatIsOffered(benchmark::State& state)
{
    Installed installed;
    for (auto _ : state) {
        for (const auto& path : installed.paths) {
            const auto file = DesktopKeyFile::read(path);
            benchmark::DoNotOptimize(isForMenus(*file) && !whatIsMissing(*file));
        }
    }
}
BENCHMARK(decideWhatIsOffered)->Unit(benchmark::kMillisecond);

}
