// What making the items of one space out of its chips costs, by the number of chips: folding those
// of one application into a group, putting them into the user's order, moving one of them, and
// finding the places of windows that have come back with other numbers.

#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "Benchmarks/Sizes.h"
#include "Quorvel/Core/ChipGroups.h"
#include "Quorvel/Core/ChipOrder.h"
#include "Quorvel/Core/RememberedOrderCoding.h"
#include "Quorvel/Core/SpacePlaces.h"
#include "Quorvel/Skylight/WindowStore.h"
#include "Tests/Support/FakeDesktop.h"

namespace quorvel::test {

namespace {

constexpr SpaceID kSpace{1};
constexpr std::int64_t kWindowsOfApplication = 5;

std::vector<ChipData> makeChips(std::int64_t count)
{
    std::vector<ChipData> chips;
    for (std::int64_t i = 0; i < count; ++i) {
        const auto application = std::to_string(i / kWindowsOfApplication);
        ChipData chip;
        chip.id = WindowID{std::uint32_t(i + 1)};
        chip.appName = "Application " + application;
        chip.bundleIdentifier = "com.example.application" + application;
        chip.windowTitle = "Window " + std::to_string(i);
        chips.push_back(std::move(chip));
    }
    return chips;
}

void groupItems(benchmark::State& state)
{
    const auto chips = makeChips(state.range(0));
    std::vector<const ChipData*> arranged;
    for (auto& chip : chips)
        arranged.push_back(&chip);
    const Trace trace;
    ChipGroups groups{trace};
    for (auto _ : state)
        benchmark::DoNotOptimize(groups.group(kSpace, arranged, chips.front().id, 0));
    state.SetComplexityN(state.range(0));
}

/// The user has put them the other way round.
struct Items {
    explicit Items(std::int64_t count)
    {
        for (auto& chip : makeChips(count))
            shown.emplace_back(chip);
        for (auto item = shown.rbegin(); item != shown.rend(); ++item)
            reversed.push_back(displayItemID(*item));
        order.restore(kSpace, reversed);
    }

    std::vector<DisplayItem> shown;
    std::vector<std::string> reversed;
    ChipOrder order;
};

void orderItems(benchmark::State& state)
{
    Items items{state.range(0)};
    for (auto _ : state)
        items.shown = items.order.apply(kSpace, std::move(items.shown));
    state.SetComplexityN(state.range(0));
}

/// Each of them in turn, to the end.
void moveItem(benchmark::State& state)
{
    Items items{state.range(0)};
    std::size_t round = 0;
    for (auto _ : state)
        items.order.move(
            kSpace, items.reversed[round++ % items.reversed.size()], std::nullopt, items.shown);
    state.SetComplexityN(state.range(0));
}

/// As at each change for some minutes after the log-in.
void seekPlaces(benchmark::State& state)
{
    FakeDesktop desktop;
    const auto platform = desktop.platform();
    const auto pid = desktop.launch();
    auto chips = makeChips(state.range(0));
    RememberedSpace remembered;
    for (auto& chip : chips) {
        chip.id = desktop.open(pid, {.title = chip.windowTitle});
        remembered.windows.push_back(
            {.application = *chip.bundleIdentifier, .title = chip.windowTitle});
    }
    WindowStore store{platform.dispatch, platform.accessibility, platform.windowServer,
        platform.displays, platform.workspace, platform.trace};
    store.populate();
    ChipOrder order;
    ChipGroups groups{platform.trace};
    std::uint64_t nextAwaited = 1;
    SpacePlaces places{{order, groups, store, platform.windowServer, platform.dispatch}, remembered,
        SpacePlaces::Numbers::mayBeOthers, nextAwaited};
    places.attach(kSpace);
    for (auto _ : state) {
        places.place(chips);
        benchmark::DoNotOptimize(places.inOrder(chips));
    }
    state.SetComplexityN(state.range(0));
}

BENCHMARK(groupItems)->Apply(sizes);
BENCHMARK(orderItems)->Apply(sizes);
BENCHMARK(moveItem)->Apply(sizes);
// No more are remembered of a space.
BENCHMARK(seekPlaces)
    ->RangeMultiplier(10)
    ->Range(10, OrderLimits::windows)
    ->Unit(benchmark::kMicrosecond)
    ->Complexity(benchmark::oN);

}

}
