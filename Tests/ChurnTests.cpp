// The whole program on a desktop where everything happens at random. When it has settled, the bar
// must show what there is, whatever the order was. QUORVEL_TEST_SEED repeats a run,
// QUORVEL_TEST_ROUNDS and QUORVEL_TEST_FULL make more of them.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <random>

#include "Tests/Support/BarFixture.h"

namespace quorvel::test {

namespace {

std::uint32_t number(const char* name, std::uint32_t otherwise)
{
    auto* text = std::getenv(name);
    return text ? static_cast<std::uint32_t>(std::strtoul(text, nullptr, 10)) : otherwise;
}

struct ChurnTest : BarFixture {
    std::mt19937 random;
    std::set<ProcessID> hungOnce;
    static constexpr int kSteps = 400;

    std::size_t below(std::size_t limit)
    {
        return std::uniform_int_distribution<std::size_t>{0, limit - 1}(random);
    }
    bool oneIn(std::size_t count) { return below(count) == 0; }
    Duration upTo(double limit)
    {
        return seconds(std::uniform_real_distribution<double>{0, limit}(random));
    }

    std::optional<ProcessID> anyApplication()
    {
        std::vector<ProcessID> answering;
        for (auto& [pid, application] : desktop.model().applications) {
            if (!application.faults.isHung)
                answering.push_back(pid);
        }
        return answering.empty() ? std::nullopt : std::optional{answering[below(answering.size())]};
    }
    std::optional<WindowID> anyWindow()
    {
        auto pid = anyApplication();
        auto windows = pid ? desktop.model().windowsOf(*pid) : std::vector<FakeWindow*>{};
        return windows.empty() ? std::nullopt : std::optional{windows[below(windows.size())]->id};
    }

    void changeApplications()
    {
        auto pid = anyApplication();
        auto choice = below(4);
        if (!pid || (choice == 0 && desktop.model().applications.size() < 12))
            desktop.launch({.name = "App",
                .bundleIdentifier = "com.example." + std::to_string(below(5)),
                .startsAnsweringAfter = oneIn(2) ? upTo(6) : Duration::zero()});
        else if (choice == 1 && oneIn(3))
            oneIn(2) ? desktop.crash(*pid) : desktop.terminate(*pid);
        else
            desktop.activate(*pid);
    }
    void openWindow()
    {
        auto pid = anyApplication();
        if (!pid)
            return;
        OpenOptions options{.title = "Window " + std::to_string(below(100)),
            .spaces = {SpaceID{1 + below(3)}},
            .accessibilityDelay = oneIn(3) ? upTo(1.5) : Duration::zero(),
            .serverDelay = oneIn(3) ? upTo(0.9) : Duration::zero()};
        if (oneIn(6))
            options.subrole = "AXDialog";
        if (oneIn(8))
            options.layer = 3;
        desktop.open(*pid, options);
    }
    void changeWindow(WindowID id)
    {
        switch (below(8)) {
        case 0:
            return desktop.close(id);
        case 1:
            return desktop.retitle(id, "Title " + std::to_string(below(1000)));
        case 2:
            return desktop.move(id, {double(below(500)), double(below(300))});
        case 3:
            return desktop.minimise(id);
        case 4:
            return desktop.restore(id);
        case 5:
            return desktop.window(id).isMinimized ? void() : desktop.focus(id);
        case 6:
            return desktop.moveToSpace(id, SpaceID{1 + below(3)});
        default:
            return toggleSilence(desktop.window(id).pid);
        }
    }
    void toggleSilence(ProcessID pid)
    {
        auto& faults = desktop.application(pid).faults;
        if (faults.duplicatedNotifications.empty())
            faults.duplicatedNotifications = {"AXTitleChanged", "AXWindowCreated",
                "AXUIElementDestroyed", "AXFocusedWindowChanged"};
        else
            faults.duplicatedNotifications.clear();
    }
    /// Not in the middle of its own news: those are tests of their own.
    void toggleHang()
    {
        desktop.advance(seconds(2));
        for (auto& [pid, application] : desktop.model().applications) {
            if (!application.faults.isHung && !oneIn(10))
                continue;
            application.faults.isHung = !application.faults.isHung;
            hungOnce.insert(pid);
        }
    }
    void step()
    {
        auto choice = below(10);
        if (choice < 2)
            changeApplications();
        else if (choice < 4)
            openWindow();
        else if (choice == 4 && oneIn(3))
            toggleHang();
        else if (choice == 5 && oneIn(2))
            desktop.activateSpace(SpaceID{1 + below(3)});
        else if (auto window = anyWindow())
            changeWindow(*window);
        if (oneIn(2))
            desktop.advance(upTo(0.4));
    }
    void rest()
    {
        for (auto& [pid, application] : desktop.model().applications)
            application.faults = {};
        settle();
        desktop.wake();
        settle();
        // What could not be read while an application hung is read with its next change.
        for (auto& [id, window] : desktop.model().windows) {
            if (!hungOnce.contains(window->pid))
                continue;
            desktop.retitle(id, window->title + ".");
            desktop.move(id, window->frame.origin().translated(1, 1));
        }
        settle();
    }

    /// Applications that no observer could be attached to go on being polled.
    std::size_t unobserved()
    {
        return static_cast<std::size_t>(std::ranges::count_if(desktop.model().applications,
            [&](auto& entry) { return desktop.accessibility().observersOf(entry.first) == 0; }));
    }
    std::map<WindowID, TrackedWindow> truth()
    {
        std::map<WindowID, TrackedWindow> windows;
        for (auto& [id, window] : desktop.model().windows) {
            bool isUsers = window->layer == 0
                && (window->isMinimized || window->subrole == ax::standardWindowSubrole);
            // A window minimised before anybody saw it is on no space that lists it.
            bool isUnseen = window->isMinimized && !QuorvelApp::windowStore().window(id);
            if (!isUsers || isUnseen)
                continue;
            auto& info = desktop.application(window->pid).info;
            windows[id] = {id, window->pid, info.localizedName, info.bundleIdentifier,
                window->title, window->frame, window->isMinimized, window->spaces};
        }
        return windows;
    }
    void expectTruth()
    {
        auto expected = truth();
        auto& tracked = QuorvelApp::windowStore().windows();
        for (auto& [id, window] : expected) {
            auto found = tracked.find(id);
            ASSERT_NE(found, tracked.end()) << "not tracked: " << raw(id);
            EXPECT_EQ(found->second.windowTitle, window.windowTitle) << raw(id);
            EXPECT_EQ(found->second.isMinimized, window.isMinimized) << raw(id);
            EXPECT_EQ(found->second.spaceIDs, window.spaceIDs) << raw(id);
            EXPECT_EQ(found->second.frame, window.frame) << raw(id);
            EXPECT_EQ(found->second, window) << raw(id);
        }
        for (auto& [id, window] : tracked)
            EXPECT_TRUE(expected.contains(id)) << "no such window: " << raw(id);
    }
};

}

TEST_F(ChurnTest, whenTheDesktopRestsTheBarShowsWhatThereIs)
{
    auto seed = number("QUORVEL_TEST_SEED", std::random_device{}());
    auto rounds = number("QUORVEL_TEST_ROUNDS", std::getenv("QUORVEL_TEST_FULL") ? 200 : 5);
    std::printf("seed %u, %u rounds\n", seed, rounds);
    for (std::uint32_t round = 0; round < rounds && !HasFailure(); ++round, ++seed) {
        SCOPED_TRACE("QUORVEL_TEST_SEED=" + std::to_string(seed));
        random.seed(seed);
        if (!runtime)
            start();
        for (int i = 0; i < kSteps; ++i)
            step();
        rest();
        expectTruth();
        EXPECT_LE(desktop.dispatch().pendingTimers(), unobserved());
        runtime.reset();
        while (!desktop.model().applications.empty())
            desktop.terminate(desktop.model().applications.begin()->first);
        desktop.drain();
    }
}

}
