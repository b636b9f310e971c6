#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <random>

#include "Tests/Support/Seed.h"
#include "Tests/X11/Support/DesktopFixture.h"
#include "Tests/X11/Support/MonitorLayout.h"

namespace quorvel::x11tests {

namespace {

constexpr int kBarHeight = 36;
constexpr Frame kLeft{0, 0, 640, 800};
constexpr Frame kRight{640, 0, 640, 600};

Frame barOf(const Frame& monitor)
{
    return {monitor.x, monitor.bottom() - kBarHeight, monitor.width, kBarHeight};
}

}

/// A desktop whose window manager has known two monitors from its start.
class Monitors : public testing::TestWithParam<ManagerKind> {
protected:
    Monitors() { monitors.set({kLeft, kRight}); }

    CommandResult run(const std::vector<std::string>& arguments) const
    {
        return runProgram(server.environment(), server.folder(), arguments);
    }
    void startWithBarsEverywhere()
    {
        bar = std::make_unique<Bar>(server);
        ASSERT_TRUE(bar->appears());
        ASSERT_EQ(run({"--set", "showOnAllDisplays=true"}).status, 0);
    }
    WindowManager& startManager()
    {
        manager = std::make_unique<WindowManager>(server, desktop, GetParam());
        return *manager;
    }
    /// Where it is asked to be, whatever place the manager had in mind.
    xcb_window_t openAt(const std::string& title, const Frame& frame)
    {
        const auto window = client.open({.title = title, .frame = frame});
        EXPECT_TRUE(eventually([&] { return desktop.isOnTaskbar(window); }));
        // A manager that is still busy placing the window may put it elsewhere after that.
        EXPECT_TRUE(eventually([&] {
            client.place(window, frame);
            return std::abs(desktop.frame(window).x - frame.x) < 40;
        })) << title
            << " at " << desktop.frame(window);
        return window;
    }
    std::vector<Frame> visibleBars() const
    {
        std::vector<Frame> frames;
        for (const auto& panel : bar->state().visiblePanels())
            frames.push_back(panel.frame);
        return frames;
    }
    testing::AssertionResult hasBarsAt(const std::vector<Frame>& frames)
    {
        return eventually([&] {
            const auto visible = visibleBars();
            if (visible.size() == frames.size()
                && std::is_permutation(visible.begin(), visible.end(), frames.begin()))
                return testing::AssertionSuccess();
            return testing::AssertionFailure() << testing::PrintToString(visible);
        });
    }
    std::size_t chipsOn(const Frame& monitor) const
    {
        for (const auto& panel : bar->state().visiblePanels()) {
            if (panel.frame == barOf(monitor))
                return panel.chips.size();
        }
        return 0;
    }
    /// The bar's own window there; none if the server has none at this place.
    xcb_window_t barWindow(const Frame& monitor)
    {
        for (const auto window : desktop.clients()) {
            if (desktop.applicationClass(window) == "Quorvel"
                && desktop.frame(window) == barOf(monitor))
                return window;
        }
        return XCB_NONE;
    }
    std::vector<std::uint32_t> strut(const Frame& monitor)
    {
        const auto window = barWindow(monitor);
        return window ? desktop.connection().numbers(window, "_NET_WM_STRUT_PARTIAL")
                      : std::vector<std::uint32_t>{1};
    }

    XServer server;
    MonitorLayout monitors{server};
    Desktop desktop{server.display()};
    std::unique_ptr<WindowManager> manager;
    Pointer pointer{server.display()};
    Client client{server};
    std::unique_ptr<Bar> bar;
};

// Fault: of two monitors one above the other, the upper one's bar can have no strut, and what is
// maximised lies under it.
TEST_P(Monitors, aMaximisedWindowEndsAboveTheBarOfAnUpperMonitor)
{
    constexpr Frame upper{0, 0, 1280, 400};
    constexpr Frame lower{0, 400, 1280, 400};
    monitors.set({upper, lower});
    startManager();
    startWithBarsEverywhere();
    ASSERT_TRUE(hasBarsAt({barOf(upper), barOf(lower)}));
    const auto window = openAt("large", {100, 50, 300, 150});
    desktop.maximise(window);
    EXPECT_TRUE(eventually([&] {
        const auto frame = desktop.frame(window);
        return frame.bottom() < barOf(upper).y && frame.bottom() > barOf(upper).y - 20
            && frame.y < 40 && frame.width > 1200;
    })) << desktop.frame(window);

    // What only reaches under it is made shorter.
    const auto low = openAt("low", {300, 100, 300, 280});
    EXPECT_TRUE(eventually([&] {
        return desktop.frame(low).height > 0 && desktop.frame(low).bottom() < barOf(upper).y;
    })) << desktop.frame(low);
}

// Faults: a bar on one monitor only, chips of all windows on each, a click that meets another chip
// than the one that is seen, a wheel that reaches nobody or turns the wrong way, a full-screen
// window that hides the other monitor's bar or lies under its own.
TEST_P(Monitors, eachHasItsBarWithItsOwnWindows)
{
    startManager();
    const auto here = openAt("here", {100, 100, 300, 200});
    // xfwm4 keeps windows on the monitors that have an output of their own, of which there is one.
    const bool usesBoth = GetParam() != ManagerKind::xfwm4;
    const auto there = openAt("there", {usesBoth ? 800 : 200, 150, 300, 200});
    ASSERT_NO_FATAL_FAILURE(startWithBarsEverywhere());
    ASSERT_TRUE(hasBarsAt({barOf(kLeft), barOf(kRight)}));
    ASSERT_TRUE(desktop.finishRequests());
    ASSERT_TRUE(bar->agreesWith(desktop));

    // A few pixels into its chips a bar shows the first of them, which is its own window's.
    EXPECT_TRUE(eventually([&] {
        return chipsOn(kLeft) == (usesBoth ? 1u : 2u) && chipsOn(kRight) == (usesBoth ? 1u : 0u);
    }));
    for (const auto& [window, monitor] : {std::pair{here, kLeft}, {there, kRight}}) {
        if (monitor == kRight && !usesBoth)
            continue;
        auto frame = barOf(monitor);
        frame.x += 60;
        frame.width = 40;
        pointer.click(frame);
        EXPECT_TRUE(eventually([&] { return desktop.activeWindow() == window; }))
            << desktop.title(window);
    }
    pointer.moveTo(5, 5);

    const auto isCovered = [&](const Frame& monitor) {
        auto above = barOf(monitor);
        above.y -= 200;
        return desktop.picture(barOf(monitor)) == desktop.picture(above);
    };
    desktop.setState(here, "FULLSCREEN", true);
    EXPECT_TRUE(eventually([&] { return isCovered(kLeft); }));
    EXPECT_FALSE(isCovered(kRight));
    desktop.setState(here, "FULLSCREEN", false);
    EXPECT_TRUE(eventually([&] { return !isCovered(kLeft); }));

    pointer.click(barOf(kRight), Button::wheelDown);
    EXPECT_TRUE(eventually([&] { return desktop.currentDesktop() == 1; }));
    EXPECT_TRUE(hasBarsAt({barOf(kLeft), barOf(kRight)}));
    EXPECT_TRUE(eventually([&] {
        pointer.click(barOf(kLeft), Button::wheelUp);
        return desktop.currentDesktop() == 0;
    }));

    ASSERT_EQ(run({"--set", "showOnAllDisplays=false"}).status, 0);
    EXPECT_TRUE(hasBarsAt({barOf(kLeft)}));
    EXPECT_TRUE(bar->agreesWith(desktop)) << "one bar stands for all";
}

// Faults: a desktop without a bar, a window that stays on a desktop which is gone.
TEST_P(Monitors, desktopsComeAndGo)
{
    startManager();
    ASSERT_NO_FATAL_FAILURE(startWithBarsEverywhere());
    const auto window = client.open({.title = "traveller"});
    const auto has = [this](std::size_t count) {
        return eventually([&] {
            const auto state = bar->state();
            return state.spaces.size() == count && state.panels.size() == 2 * count;
        });
    };
    EXPECT_TRUE(has(4));
    desktop.setDesktopCount(6);
    EXPECT_TRUE(has(6));
    desktop.moveToDesktop(window, 5);
    desktop.switchTo(5);
    ASSERT_TRUE(desktop.finishRequests());
    EXPECT_TRUE(bar->agreesWith(desktop));
    desktop.setDesktopCount(2);
    EXPECT_TRUE(has(2));
    EXPECT_TRUE(bar->agreesWith(desktop));
}

namespace {

constexpr std::size_t kRounds = 8; ///< each layout once
constexpr std::size_t kFullRounds = 200;

const std::vector<std::vector<Frame>> kLayouts{
    {{0, 0, 1280, 800}},
    {kLeft, kRight},
    {kRight, kLeft},
    {{0, 0, 1280, 400}, {0, 400, 1280, 400}},
    {{320, 400, 640, 400}, {0, 0, 1280, 400}},
    {{0, 0, 800, 600}, {0, 0, 800, 600}},
    {{640, 200, 640, 600}, {0, 0, 640, 700}, {0, 0, 640, 700}},
    {{0, 0, 400, 800}, {400, 0, 440, 800}, {840, 100, 440, 500}},
};

/// What the strip of a bar on this monitor takes from others; nothing above another monitor.
std::vector<std::uint32_t> expectedStrut(const Frame& monitor, const std::vector<Frame>& all)
{
    for (const auto& other : all) {
        if (other.y >= monitor.bottom() && other.x < monitor.x + monitor.width
            && monitor.x < other.x + other.width)
            return {};
    }
    const auto bottom = static_cast<std::uint32_t>(800 - monitor.bottom() + kBarHeight);
    return {0, 0, 0, bottom, 0, 0, 0, 0, 0, 0, static_cast<std::uint32_t>(monitor.x),
        static_cast<std::uint32_t>(monitor.x + monitor.width - 1)};
}

}

// Faults: a bar off the screen, at the place of a monitor that has gone, or missing; a strut that
// is counted from the monitor's edge, reaches through its neighbour, takes a strip between two
// monitors away or is of yesterday; chips out of order; a crash between two monitors.
TEST_P(Monitors, barsFollowWhateverMonitorsWindowsAndDesktopsDo)
{
    const auto seed = test::seed();
    SCOPED_TRACE("QUORVEL_TEST_SEED=" + std::to_string(seed));
    std::mt19937 random(seed);
    const auto below = [&](std::size_t limit) { return random() % limit; };
    startManager();
    ASSERT_NO_FATAL_FAILURE(startWithBarsEverywhere());

    const auto change = [&] {
        const auto choice = below(5);
        auto windows = client.windows();
        if (choice == 0)
            return desktop.switchTo(static_cast<std::uint32_t>(below(4)));
        if (windows.size() < 3 || (choice < 3 && windows.size() < 12)) {
            client.open({.title = "window " + std::to_string(below(1000)),
                .frame = {static_cast<int>(below(1000)), static_cast<int>(below(500)), 200, 150}});
            return;
        }
        const auto window = windows[below(windows.size())];
        if (choice < 4)
            desktop.moveToDesktop(window, static_cast<std::uint32_t>(below(4)));
        else
            client.destroy(window);
    };
    const std::size_t rounds = std::getenv("QUORVEL_TEST_FULL") ? kFullRounds : kRounds;
    auto layouts = kLayouts;
    for (std::size_t round = 0; round < rounds && !HasFailure(); ++round) {
        if (round % layouts.size() == 0)
            std::shuffle(layouts.begin(), layouts.end(), random);
        const auto& layout = layouts[round % layouts.size()];
        for (auto few = below(4); few > 0; --few)
            change();
        monitors.set(layout);
        for (auto few = below(4); few > 0; --few)
            change();

        std::vector<Frame> bars;
        for (const auto& monitor : layout) {
            if (std::find(bars.begin(), bars.end(), barOf(monitor)) == bars.end())
                bars.push_back(barOf(monitor));
        }
        ASSERT_TRUE(desktop.finishRequests());
        ASSERT_TRUE(hasBarsAt(bars)) << "round " << round;
        for (const auto& monitor : layout) {
            ASSERT_TRUE(eventually([&] {
                return strut(monitor) == expectedStrut(monitor, layout);
            })) << "round "
                << round << ", monitor " << monitor << ": "
                << testing::PrintToString(strut(monitor));
        }
        ASSERT_TRUE(bar->agreesWith(desktop)) << "round " << round;
    }
}

QUORVEL_UNDER_EACH_MANAGER(Monitors);

}
