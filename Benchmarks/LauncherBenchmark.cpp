// What the launcher costs with five thousand applications, on the desktop in memory: a keystroke up
// to where the list is built anew, and its first frame up to where the pixels are in memory.

#include <memory>
#include <string>

#include <benchmark/benchmark.h>

#include "Hosts/Linux/Drawing/CairoCanvas.h"
#include "Hosts/Linux/Drawing/CanvasTools.h"
#include "Quorvel/Core/BarManager.h"
#include "Quorvel/Core/PinStore.h"
#include "Quorvel/Quorvel.h"
#include "Tests/Support/FakeDesktop.h"

namespace quorvel::test {

namespace {

constexpr int kApplications = 5000;
constexpr int kPins = 10;
constexpr double kScale = 2;

std::string nameOf(int number)
{
    constexpr const char* first[]
        = {"Visual", "Simple", "Ubuntu", "Image", "Remote", "GNU", "Écran", "Sound", "Disk", "KDE"};
    constexpr const char* second[]
        = {"Studio", "Editor", "Viewer", "Manager", "Café", "Monitor", "Player", "Mail"};
    return std::string{first[number % 10]} + " " + second[number / 10 % 8] + " "
        + std::to_string(number);
}

/// The program with a full catalogue, and the launcher on it.
class Desk {
public:
    Desk()
    {
        for (int number = 0; number < kApplications; ++number) {
            BundleDescription description;
            description.identifier = "org.example.app" + std::to_string(number);
            description.displayName = nameOf(number);
            m_desktop.install("/Applications/" + std::to_string(number) + ".app", description);
        }
        m_runtime = std::make_unique<Runtime>(m_desktop.platform());
        QuorvelApp::launch(*m_runtime);
        m_desktop.advance(seconds(15));
        for (int number = 0; number < kPins; ++number)
            m_runtime->barManager()->pinStore().setPin(
                "org.example.app" + std::to_string(number * 7), PinDestination::launcher, true);
    }

    void toggle() { m_desktop.control().send({"--launcher"}); }
    void settle() { m_desktop.advance(seconds(1)); }
    FakePanel& launcher() { return *m_desktop.surfaces().launcher(); }
    void paint()
    {
        auto bounds = launcher().bounds();
        xdg::CairoSurface surface{cairo_image_surface_create(
            CAIRO_FORMAT_ARGB32, int(bounds.width * kScale), int(bounds.height * kScale))};
        xdg::CairoCanvas canvas{surface.get(), kScale, m_tools};
        canvas.beginDamage(bounds);
        launcher().renderOn(canvas, bounds);
        canvas.endDamage();
    }

private:
    FakeDesktop m_desktop;
    xdg::CanvasTools m_tools;
    std::unique_ptr<Runtime> m_runtime;
};

/// The letter that is typed matches thousands; taking it back lists everything.
void keystroke(benchmark::State& state, const char* query)
{
    Desk desk;
    desk.toggle();
    desk.settle();
    desk.launcher().type(query);
    auto last = std::string{query}.substr(std::string{query}.size() - 1);
    for (auto _ : state) {
        desk.launcher().pressKey(KeyCode::backspace);
        desk.launcher().type(last);
    }
    state.SetItemsProcessed(2 * state.iterations());
}

void firstFrame(benchmark::State& state)
{
    Desk desk;
    for (auto _ : state) {
        desk.toggle();
        desk.paint();
        state.PauseTiming();
        desk.toggle();
        desk.settle();
        state.ResumeTiming();
    }
}

BENCHMARK_CAPTURE(keystroke, firstLetter, "e")->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(keystroke, thirdLetter, "edi")->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(keystroke, noMatch, "zzzz")->Unit(benchmark::kMicrosecond);
BENCHMARK(firstFrame)->Unit(benchmark::kMicrosecond);

}

}
