// Pictures of fifty windows of 4K size from a real X server, asked for at once through the service
// that the popups use: how long the main loop is kept from its work at most, how long all of them
// take, and what the process needs more of memory meanwhile. Takes the server of DISPLAY:
//
//     xvfb-run -s '-screen 0 3840x2160x24' quorvel_benchmarks --benchmark_filter=pictures

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>
#include <glib.h>
#include <xcb/xcb.h>

#include "Hosts/Linux/Loop/GLibDispatch.h"
#include "Hosts/X11/Capture/X11ScreenCapture.h"
#include "Quorvel/Core/ThumbnailService.h"
#include "Tests/Support/OneDisplay.h"

namespace quorvel::test {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::uint32_t kWindows = 50;
constexpr std::uint16_t kWidth = 3840;
constexpr std::uint16_t kHeight = 2160;

/// Windows over the whole screen, each of a colour of its own.
class Windows {
public:
    Windows() : m_connection(xcb_connect(nullptr, nullptr)) { }
    ~Windows() { xcb_disconnect(m_connection); }
    Windows(const Windows&) = delete;
    Windows& operator=(const Windows&) = delete;

    bool exists() const { return xcb_connection_has_error(m_connection) == 0; }
    std::vector<xcb_window_t> open()
    {
        auto* screen = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data;
        std::vector<xcb_window_t> windows;
        for (std::uint32_t i = 0; i < kWindows; ++i) {
            const std::uint32_t values[] = {0x102030 * (i % 8 + 1), 1};
            windows.push_back(xcb_generate_id(m_connection));
            xcb_create_window(m_connection, XCB_COPY_FROM_PARENT, windows.back(), screen->root, 0,
                0, kWidth, kHeight, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT, values);
            xcb_map_window(m_connection, windows.back());
        }
        std::free(
            xcb_get_input_focus_reply(m_connection, xcb_get_input_focus(m_connection), nullptr));
        return windows;
    }

private:
    xcb_connection_t* m_connection;
};

/// The most memory the process has had so far, in megabytes.
double peakMemory()
{
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with("VmHWM:"))
            return std::strtod(line.c_str() + 6, nullptr) / 1024;
    }
    return 0;
}

void pictures(benchmark::State& state)
{
    Windows windows;
    if (!windows.exists())
        return state.SkipWithError("no X server");
    xdg::GLibDispatch dispatch;
    xdg::SharedModel model;
    std::vector<WindowID> ids;
    for (auto native : windows.open()) {
        WindowID id{std::uint32_t(ids.size() + 1)};
        ids.push_back(id);
        model.write([&](xdg::DesktopModel& desktop) {
            auto& record = desktop.windows[id];
            record.id = id;
            record.native = native;
            record.frame = {0, 0, kWidth, kHeight};
        });
    }
    xdg::x11::X11ScreenCapture capture{model, dispatch};
    const OneDisplay displays;
    double longest = 0;
    double before = peakMemory();
    for (auto _ : state) {
        ThumbnailService service{dispatch, capture, displays};
        service.prefetch(ids);
        auto last = Clock::now();
        auto missing = ids.size();
        while (missing > 0) {
            g_main_context_iteration(nullptr, false);
            missing = std::size_t(
                std::ranges::count_if(ids, [&](auto id) { return !service.cached(id); }));
            auto now = Clock::now();
            longest = std::max(longest, std::chrono::duration<double>(now - last).count());
            last = now;
            g_usleep(100);
        }
    }
    state.counters["longest_turn_ms"] = longest * 1000;
    state.counters["more_memory_MB"] = peakMemory() - before;
}

BENCHMARK(pictures)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(3);

}

}
