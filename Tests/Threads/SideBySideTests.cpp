// What crosses threads, on real ones and on a real X server, so that the thread sanitizer sees it:
// the observers, the tracker of the pointer, windows that are shortened, badges, and questions to
// the mirror from every side.
#include <algorithm>
#include <atomic>
#include <csignal>
#include <cstdlib>
#include <optional>

#include <gtest/gtest.h>
#include <unistd.h>

#include "Quorvel/Core/BadgeService.h"
#include "Quorvel/Core/MouseDisplayTracker.h"
#include "Quorvel/Core/WindowAvoidanceManager.h"
#include "Quorvel/Platform/LaunchServices.h"
#include "Quorvel/Platform/WindowServer.h"
#include "Quorvel/Platform/Workspace.h"
#include "Quorvel/Skylight/AXObserverManager.h"
#include "Quorvel/Skylight/Minimal.h"
#include "Quorvel/Skylight/SpaceWindows.h"
#include "Quorvel/Skylight/WindowStore.h"
#include "Tests/X11/Support/Client.h"
#include "Tests/X11/Support/HostServices.h"
#include "Tests/X11/Support/WindowManager.h"

namespace quorvel::x11tests {

namespace {

constexpr int kTall = 1000; ///< reaches under the bar
constexpr int kFewestTurns = 600; ///< of the main loop

/// How many windows an application opens, how long they stay as they are, how tall every fourth
/// becomes.
struct Habits {
    int windows = 25;
    useconds_t pause = 20'000;
    int height = 200;
};

/// Its windows come, change and go without pause. When it has opened so many, it dies of a sudden.
ClientProcess::Worker restless(const Habits& habits)
{
    return [habits](Client& client, char) {
        for (int i = 0; i < habits.windows; ++i) {
            auto window = client.open({.title = "Window " + std::to_string(i),
                .state = "_NET_WM_STATE_DEMANDS_ATTENTION"});
            usleep(habits.pause);
            client.setTitle(window, "Title " + std::to_string(i));
            client.resize(window, 200 + i % 50, i % 4 == 0 ? habits.height : 200);
            usleep(habits.pause);
            if (i + 1 < habits.windows)
                client.destroy(window);
        }
        kill(getpid(), SIGKILL);
    };
}

/// Applications that live and die, a few at a time. Make it before anything that has threads: the
/// address sanitizer's allocator may stay locked for ever in a process that was forked while a
/// thread was allocating.
class Crowd {
public:
    static constexpr std::size_t kAtOnce = 3;

    Crowd(const XServer& server, int size, const Habits& habits)
    {
        for (int i = 0; i < size; ++i)
            m_toCome.push_back(std::make_unique<ClientProcess>(server, restless(habits)));
    }

    /// Lets the next begin where one has died; true once all have.
    bool haveAllDied()
    {
        std::erase_if(m_applications, [](auto& application) { return application->hasDied(); });
        while (m_applications.size() < kAtOnce && !m_toCome.empty()) {
            m_toCome.back()->order('l');
            m_applications.push_back(std::move(m_toCome.back()));
            m_toCome.pop_back();
        }
        return m_applications.empty();
    }

private:
    std::vector<std::unique_ptr<ClientProcess>> m_toCome;
    std::vector<std::unique_ptr<ClientProcess>> m_applications;
};

struct Host : HostServices {
    /// How many windows applications have now, asked in every way there is.
    int ask()
    {
        auto& server = services.windowServer();
        auto& accessibility = services.accessibility();
        auto& displays = services.displays();
        int count = 0;
        std::vector<CGWindowInfo> listed; // nothing may be asked from inside the listing
        server.enumerateWindows(kWindowListExcludeDesktopElements,
            [&](const CGWindowInfo& window) { listed.push_back(window); });
        for (auto& window : listed) {
            if (!window.ownerPID || !window.windowNumber)
                continue;
            ++count;
            auto elements = accessibility.copyAttribute(
                accessibility.application(*window.ownerPID), ax::windows);
            if (auto* windows = elements.get<std::vector<AXElement>>()) {
                for (auto& element : *windows)
                    accessibility.copyAttribute(element, ax::title);
            }
            server.spacesOfWindows(kAllSpacesMask, {*window.windowNumber});
        }
        for (auto& display :
            server.managedDisplaySpaces().value_or(std::vector<ManagedDisplay>{})) {
            for (auto& space : display.spaces)
                server.windowsOfSpaces({SpaceID{space.id64.value_or(0)}}, kSpaceWindowOptions);
        }
        displays.displayAt(displays.pointerLocation());
        displays.screens();
        return count;
    }
};

struct SideBySideTest : testing::Test {
    XServer server;
    Desktop desktop{server.display()};
    WindowManager manager{server, desktop, ManagerKind::openbox};

    SideBySideTest()
    {
        for (auto& [name, value] : server.environment())
            setenv(name.c_str(), value.c_str(), 1);
    }
};

}

TEST_F(SideBySideTest, everybodyMayAskWhileWindowsComeAndGoAndObserversStartAndStop)
{
    Crowd crowd{server, 18, {.windows = 12}};
    ClientProcess last{server, [](Client& client, char order) {
                           if (order == 'o')
                               client.open({.title = "last"});
                           else
                               client.setTitle(client.windows()[0], "renamed");
                       }};
    Host host;
    auto& workspace = host.services.workspace();
    AXObserverManager observers{host.dispatch, host.services.accessibility(), host.dispatch.main()};
    MouseDisplayTracker tracker{host.dispatch, host.services.displays()};
    std::atomic<bool> isEnough = false;
    std::atomic<int> askers = 2;
    int events = 0;
    bool isTracking = false;
    observers.onEvent = [&](const AXWindowEvent&) { ++events; };
    auto launches = workspace.didLaunch.subscribe(
        [&](const RunningApplication& application) { observers.observe(application.pid); });
    auto ends = workspace.didTerminate.subscribe(
        [&](const RunningApplication& application) { observers.stopObserving(application.pid); });
    observers.start();
    for (int i = 0; i < 2; ++i) {
        host.dispatch.background().async([&] {
            while (!isEnough)
                host.ask();
            --askers;
        });
    }

    int turns = 0;
    EXPECT_TRUE(host.runUntil([&] {
        ++turns;
        if (turns % 150 == 0) {
            observers.stop(); // in the middle of whatever it is about
            observers.start();
        }
        if (turns % 20 == 0)
            observers.refreshWindows(dockEligibleOwnerPIDs(workspace));
        if (turns % 30 == 0)
            std::exchange(isTracking, !isTracking) ? tracker.stop() : tracker.start();
        tracker.preferredDisplayID();
        return crowd.haveAllDied() && turns >= kFewestTurns;
    }));
    isEnough = true;
    // They use what ends with this test.
    EXPECT_TRUE(host.runUntil([&] { return askers == 0; }));
    EXPECT_TRUE(host.runUntil([&] { return host.ask() == 0; })) << host.ask() << " windows left";

    // Nobody has gone deaf.
    events = 0;
    last.order('o');
    EXPECT_TRUE(host.runUntil([&] { return host.ask() == 1; }));
    EXPECT_TRUE(host.runUntil([&] { return last.order('t'), events > 0; }));
}

namespace {

/// Shortens windows and asks for badges, and begins anew while applications are being asked.
struct Shorteners {
    explicit Shorteners(Host& host_) : host(host_)
    {
        begin();
        store.onChange = [this] { avoidance->scheduleAdjustment(Duration::zero()); };
    }

    void begin()
    {
        badges.emplace(host.dispatch, services.launchServices(), trace);
        badges->start();
        avoidance.emplace(store, host.dispatch, services.accessibility(), services.windowServer(),
            services.displays(),
            WindowAvoidanceManager::Bars{
                [] { return std::set{SpaceID{1}}; },
                [] { return std::vector<std::size_t>{}; },
                [this] { return spaces.ask(); },
            });
        avoidance->setBarHeight(36);
    }
    void turn()
    {
        if (++turns % 10 == 0) {
            for (auto pid : store.trackedPIDs())
                store.startLifecycleMonitoring(pid, Duration::zero());
        }
        if (turns % 20 == 0) {
            services.launchServices().answersMayHaveChanged.emit();
            badges->clearAttention("sample", {});
        }
    }

    Host& host;
    xdg::x11::DesktopServices& services = host.services;
    Trace trace;
    WindowStore store{host.dispatch, services.accessibility(), services.windowServer(),
        services.displays(), services.workspace(), trace};
    const SpaceWindows spaces{services.windowServer(), services.displays()};
    std::optional<BadgeService> badges;
    std::optional<WindowAvoidanceManager> avoidance;
    int turns = 0;
};

}

TEST_F(SideBySideTest, windowsAreShortenedAndBadgesPolledWhileApplicationsComeAndGo)
{
    Crowd crowd{server, 9, {.windows = 5, .pause = 120'000, .height = kTall}};
    ClientProcess last{server, [](Client& client, char) {
                           client.open({.title = "last",
                               .applicationClass = "Last",
                               .state = "_NET_WM_STATE_DEMANDS_ATTENTION",
                               .userTime = 0});
                           client.resize(client.windows()[0], 300, kTall);
                       }};
    Host host;
    Shorteners shorteners{host};
    auto& store = shorteners.store;
    auto& workspace = host.services.workspace();
    auto launches = workspace.didLaunch.subscribe([&](const RunningApplication& launched) {
        store.addWindowsForPID(launched.pid);
        store.startLifecycleMonitoring(launched.pid, seconds(0.1));
    });
    auto ends = workspace.didTerminate.subscribe(
        [&](const RunningApplication& gone) { store.removeWindows(gone.pid); });

    EXPECT_TRUE(host.runUntil([&] {
        shorteners.turn();
        if (shorteners.turns % 100 == 0)
            shorteners.begin();
        return crowd.haveAllDied() && shorteners.turns >= kFewestTurns;
    })) << shorteners.turns
        << " turns";

    // Nothing of it is left, and the next window is looked after as the first was.
    EXPECT_TRUE(host.runUntil([&] { return shorteners.turn(), store.windows().empty(); }));
    last.order('o');
    EXPECT_TRUE(host.runUntil([&] {
        shorteners.turn();
        return std::ranges::any_of(store.windows(), [](const auto& entry) {
            return entry.second.frame.height > 250 && entry.second.frame.height < kTall;
        });
    }));
    EXPECT_TRUE(host.runUntil([&] {
        return shorteners.turn(), shorteners.badges->attentionByBundleID().value().contains("last");
    }));
}

}
