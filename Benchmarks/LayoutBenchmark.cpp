// What laying out a row costs, by the number of its chips: when it gets another width, when one
// title changes, and when a chip comes and goes. Without painting, and without measuring text,
// which no chip of a single window needs for that.

#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "Benchmarks/Sizes.h"
#include "Quorvel/Platform/Application.h"
#include "Quorvel/Views/ChipsRow.h"
#include "Quorvel/Views/Kit/Palette.h"
#include "Tests/Support/FakeText.h"
#include "Tests/Support/VirtualDispatch.h"

namespace quorvel::test {

namespace {

constexpr double kWidth = 1700;

class Row {
public:
    explicit Row(std::int64_t chips)
    {
        m_row.setFrame({0, 0, kWidth, barHeight(m_metrics.barSize)});
        for (std::int64_t i = 0; i < chips; ++i)
            m_items.emplace_back(makeChip());
        m_row.setItems(m_items);
    }

    void resize() { m_row.setFrame({0, 0, kWidth - ++m_round % 2, barHeight(m_metrics.barSize)}); }
    void retitle()
    {
        auto& chip = std::get<ChipData>(m_items[std::size_t(++m_round) % m_items.size()]);
        chip.windowTitle = "A title, changed for the time " + std::to_string(m_round);
        m_row.setItems(m_items);
    }
    void addAndRemove()
    {
        m_items.emplace_back(makeChip());
        m_row.setItems(m_items);
        m_items.pop_back();
        m_row.setItems(m_items);
    }

private:
    ChipData makeChip()
    {
        ChipData chip;
        chip.id = WindowID{m_nextWindow++};
        chip.appName = "Application";
        chip.bundleIdentifier = "com.example.application";
        chip.windowTitle = "A window with a title of the usual length";
        return chip;
    }

    const Palette m_palette = Palette::of({});
    const BarMetrics m_metrics = BarMetrics::of(BarSize::medium);
    const FakeText m_text;
    VirtualDispatch m_dispatch;
    ChipsRow m_row{m_palette, m_metrics, m_text, m_dispatch};
    std::vector<DisplayItem> m_items;
    std::uint32_t m_nextWindow = 1;
    int m_round = 0;
};

void layout(benchmark::State& state, void (Row::*change)())
{
    Row row{state.range(0)};
    for (auto _ : state)
        (row.*change)();
    state.SetComplexityN(state.range(0));
}

BENCHMARK_CAPTURE(layout, other_width, &Row::resize)->Apply(sizes);
BENCHMARK_CAPTURE(layout, one_title, &Row::retitle)->Apply(sizes);
BENCHMARK_CAPTURE(layout, one_more_and_less, &Row::addAndRemove)->Apply(sizes);

}

}
