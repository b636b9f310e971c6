// What one frame of the bar costs at scale 2 on the canvas that the X11 host draws with: our own
// time until the pixels are in memory, without the way to the server. The longest frame is
// reported beside the mean. A row of many chips shows icons, and then scrolls.

#include <algorithm>
#include <chrono>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "Hosts/Linux/Drawing/CairoCanvas.h"
#include "Hosts/Linux/Drawing/CanvasTools.h"
#include "Hosts/Linux/Drawing/PixelPicture.h"
#include "Quorvel/Core/BarManager.h"
#include "Quorvel/Core/DisplayItem.h"
#include "Quorvel/Core/UserSettings.h"
#include "Quorvel/Quorvel.h"
#include "Quorvel/Views/BarViews.h"
#include "Tests/Support/FakeDesktop.h"

namespace quorvel::test {

namespace {

constexpr int kWindows = 50;
constexpr double kScale = 2;
constexpr Duration kFrame = seconds(1.0 / 60);

/// Stripes, so that nothing can be skipped as being of one colour.
Image stripes(int width, int height)
{
    auto* surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width, height);
    auto* data = cairo_image_surface_get_data(surface);
    int stride = cairo_image_surface_get_stride(surface);
    for (int y = 0; y < height; ++y) {
        auto* row = reinterpret_cast<std::uint32_t*>(data + std::ptrdiff_t(y) * stride);
        for (int x = 0; x < width; ++x)
            row[x] = 0xFF000000U | std::uint32_t(x * 7) << 16 | std::uint32_t(y * 5);
    }
    cairo_surface_mark_dirty(surface);
    return std::make_shared<xdg::PixelPicture>(surface);
}

/// A bar on a 4K screen, of fifty windows unless told otherwise, whose paints are repeated on a
/// real canvas.
class Bar {
public:
    explicit Bar(bool isGrouped, int windows = kWindows)
    {
        auto& display = m_desktop.model().displays.front();
        display.frame = {0, 0, 1920, 1080};
        display.scale = kScale;
        m_desktop.workspace().makeIcon = [] { return stripes(64, 64); };
        // Drawing the windows is not the bar's work.
        m_desktop.screenCapture().makePicture
            = [pictures = std::map<std::pair<int, int>, Image>{}](
                  WindowID, const CaptureConfiguration& size) mutable {
                  auto& picture = pictures[{int(size.width), int(size.height)}];
                  if (!picture)
                      picture = stripes(int(size.width), int(size.height));
                  return picture;
              };
        m_pid = m_desktop.launch({.name = "Editor", .bundleIdentifier = "editor"});
        for (int i = 0; i < windows; ++i)
            m_windows.push_back(
                m_desktop.open(m_pid, {.title = "Chapter " + std::to_string(i) + " of the book"}));
        m_runtime = std::make_unique<Runtime>(m_desktop.platform());
        m_runtime->userSettings().setGroupWindowsByApp(isGrouped);
        QuorvelApp::launch(*m_runtime);
        m_desktop.advance(seconds(15));
        forget();
    }

    FakeDesktop& desktop() { return m_desktop; }
    FakePanel& panel() { return *m_desktop.surfaces().panel(SpaceID{1}); }
    FakePanel* popup() { return m_desktop.surfaces().popup(); }
    ProcessID pid() const { return m_pid; }
    std::vector<std::pair<std::string, Rect>> chips()
    {
        return BarViews::panel(*m_runtime->barManager()->panels().at(SpaceID{1}))
            .content()
            ->chipFrames();
    }

    /// Those whose chips are in sight.
    std::vector<WindowID> shownWindows()
    {
        auto all = chips();
        const std::map<std::string, Rect> frames(all.begin(), all.end());
        auto shown = m_windows;
        std::erase_if(
            shown, [&](WindowID window) { return frames.at(displayItemID(window)).isEmpty(); });
        return shown;
    }

    void forget()
    {
        panel().forgetPaints();
        if (popup())
            popup()->forgetPaints();
    }
    /// What was painted since, once more, on pixels.
    std::size_t paintOnPixels()
    {
        auto count = paintOnPixels(panel(), m_barPixels);
        return popup() ? count + paintOnPixels(*popup(), m_popupPixels) : count;
    }
    void paintWhole() { paint(panel(), m_barPixels, panel().bounds()); }

private:
    struct Pixels {
        Size size;
        xdg::CairoSurface surface;
        std::unique_ptr<xdg::CairoCanvas> canvas;
    };

    std::size_t paintOnPixels(FakePanel& from, Pixels& pixels)
    {
        std::vector<Rect> damage;
        for (auto& done : from.paints())
            damage.push_back(done.damage);
        from.forgetPaints();
        for (auto& part : damage)
            paint(from, pixels, part);
        return damage.size();
    }
    void paint(FakePanel& from, Pixels& pixels, const Rect& damage)
    {
        if (!pixels.canvas || pixels.size != from.bounds().size()) {
            pixels.size = from.bounds().size();
            pixels.canvas.reset();
            pixels.surface.reset(cairo_image_surface_create(CAIRO_FORMAT_ARGB32,
                int(pixels.size.width * kScale), int(pixels.size.height * kScale)));
            pixels.canvas
                = std::make_unique<xdg::CairoCanvas>(pixels.surface.get(), kScale, m_tools);
        }
        pixels.canvas->beginDamage(damage);
        from.renderOn(*pixels.canvas, damage);
        pixels.canvas->endDamage();
    }

    FakeDesktop m_desktop;
    xdg::CanvasTools m_tools;
    ProcessID m_pid{};
    std::vector<WindowID> m_windows;
    std::unique_ptr<Runtime> m_runtime;
    Pixels m_barPixels;
    Pixels m_popupPixels;
};

class Frames {
public:
    explicit Frames(benchmark::State& state) : m_state(state) { }
    ~Frames()
    {
        m_state.counters["longest_ms"] = m_longest * 1000;
        m_state.counters["frames"]
            = benchmark::Counter(double(m_count), benchmark::Counter::kAvgIterations);
    }

    template <typename Work> void measure(Work work)
    {
        auto start = std::chrono::steady_clock::now();
        work();
        std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
        m_longest = std::max(m_longest, taken.count());
        m_sum += taken.count();
        ++m_count;
    }
    void endIteration() { m_state.SetIterationTime(std::exchange(m_sum, 0)); }

private:
    benchmark::State& m_state;
    double m_longest = 0;
    double m_sum = 0;
    int m_count = 0;
};

void wholeBar(benchmark::State& state)
{
    Bar bar(false, int(state.range(0)));
    for (auto _ : state)
        bar.paintWhole();
}

void oneChangedTitle(benchmark::State& state)
{
    Bar bar(false, int(state.range(0)));
    const auto windows = bar.shownWindows();
    std::size_t round = 0;
    std::size_t parts = 0;
    for (auto _ : state) {
        state.PauseTiming();
        auto window = windows[++round % windows.size()];
        bar.desktop().retitle(window, "Chapter, now in version " + std::to_string(round));
        bar.desktop().advance(seconds(0.5));
        state.ResumeTiming();
        parts += bar.paintOnPixels();
    }
    state.counters["parts"] = double(parts) / double(round);
}

/// The pointer carries a chip from one end to the other and back, and drops it.
void dragOfAChip(benchmark::State& state)
{
    Bar bar(false);
    Frames frames(state);
    for (auto _ : state) {
        auto chips = bar.chips();
        auto from = chips.front().second.centre();
        auto to = chips.back().second.centre();
        bar.panel().press(from);
        for (int step = 0; step < 60; ++step) {
            double share = step < 30 ? step / 30.0 : (60 - step) / 30.0;
            frames.measure([&] {
                bar.panel().movePointer({from.x + (to.x - from.x) * share, from.y});
                bar.desktop().advance(kFrame);
                bar.paintOnPixels();
            });
        }
        bar.panel().release(from);
        for (int step = 0; step < 12; ++step) {
            frames.measure([&] {
                bar.desktop().advance(kFrame);
                bar.paintOnPixels();
            });
        }
        bar.panel().leave();
        bar.desktop().advance(seconds(1));
        bar.forget();
        frames.endIteration();
    }
}

/// Comes up over the first chip, goes when the pointer has left.
void popup(benchmark::State& state, bool isGrouped)
{
    Bar bar(isGrouped);
    Frames frames(state);
    for (auto _ : state) {
        bar.panel().movePointer(bar.chips().front().second.centre());
        for (int step = 0; step < 45; ++step) {
            frames.measure([&] {
                bar.desktop().advance(kFrame);
                bar.paintOnPixels();
            });
        }
        if (!bar.popup()) {
            state.SkipWithError("no popup");
            return;
        }
        bar.panel().leave();
        for (int step = 0; step < 45; ++step) {
            frames.measure([&] {
                bar.desktop().advance(kFrame);
                bar.paintOnPixels();
            });
        }
        frames.endIteration();
    }
}

/// As often as gives a steady mean; to make a bar of many windows takes seconds each time.
void paintSizes(benchmark::internal::Benchmark* family)
{
    family->RangeMultiplier(10)->Range(10, 10'000)->Iterations(200)->Unit(benchmark::kMillisecond);
}

BENCHMARK(wholeBar)->Apply(paintSizes);
BENCHMARK(oneChangedTitle)->Apply(paintSizes);
BENCHMARK(dragOfAChip)->Unit(benchmark::kMillisecond)->UseManualTime();
BENCHMARK_CAPTURE(popup, window, false)->Unit(benchmark::kMillisecond)->UseManualTime();
BENCHMARK_CAPTURE(popup, group_of_fifty, true)->Unit(benchmark::kMillisecond)->UseManualTime();

}

}
