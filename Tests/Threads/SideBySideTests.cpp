// What crosses threads, on real ones and on a real X server, so that the thread sanitizer sees it:
// the observers, the tracker of the pointer, windows that are shortened, badges, and questions to
// the mirror from every side.
#include <atomic>
#include <csignal>
#include <cstdlib>
#include <optional>

#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <sys/wait.h>
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

/// An application whose windows come, change and go without pause, until it dies of a sudden.
class RestlessApplication {
public:
    /// How long its windows stay as they are, and how tall every fourth becomes.
    struct Habits {
        useconds_t pause = 20'000;
        int height = 200;
    };

    explicit RestlessApplication(const XServer& server) : RestlessApplication(server, Habits{}) { }
    RestlessApplication(const XServer& server, Habits habits) : m_pid(fork())
    {
        if (m_pid != 0)
            return;
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        Client client(server);
        for (int i = 0;; ++i) {
            auto window = client.open({.title = "Window " + std::to_string(i),
                .state = "_NET_WM_STATE_DEMANDS_ATTENTION"});
            usleep(habits.pause);
            client.setTitle(window, "Title " + std::to_string(i));
            client.resize(window, 200 + i % 50, i % 4 == 0 ? habits.height : 200);
            usleep(habits.pause);
            client.destroy(window);
        }
    }
    RestlessApplication(const RestlessApplication&) = delete;
    RestlessApplication& operator=(const RestlessApplication&) = delete;
    ~RestlessApplication()
    {
        kill(m_pid, SIGKILL);
        waitpid(m_pid, nullptr, 0);
    }

private:
    pid_t m_pid;
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
    std::vector<std::unique_ptr<RestlessApplication>> applications;

    SideBySideTest()
    {
        for (auto& [name, value] : server.environment())
            setenv(name.c_str(), value.c_str(), 1);
        for (int i = 0; i < 3; ++i)
            applications.push_back(std::make_unique<RestlessApplication>(server));
    }
    void replaceOne(std::size_t number, RestlessApplication::Habits habits = {})
    {
        applications[number % applications.size()]
            = std::make_unique<RestlessApplication>(server, habits);
    }
};

}

TEST_F(SideBySideTest, everybodyMayAskWhileWindowsComeAndGoAndObserversStartAndStop)
{
    Host host;
    auto& workspace = host.services.workspace();
    AXObserverManager observers{host.dispatch, host.services.accessibility(), host.dispatch.main()};
    MouseDisplayTracker tracker{host.dispatch, host.services.displays()};
    std::atomic<bool> isEnough = false;
    std::atomic<int> asked = 0;
    std::atomic<int> askers = 2;
    int events = 0;
    int attached = 0;
    int ended = 0;
    bool isTracking = false;
    observers.onEvent = [&](const AXWindowEvent&) { ++events; };
    observers.onObserverAdded = [&](ProcessID) { ++attached; };
    auto launches = workspace.didLaunch.subscribe(
        [&](const RunningApplication& application) { observers.observe(application.pid); });
    auto ends = workspace.didTerminate.subscribe([&](const RunningApplication& application) {
        observers.stopObserving(application.pid);
        ++ended;
    });
    observers.start();
    for (int i = 0; i < 2; ++i) {
        host.dispatch.background().async([&] {
            while (!isEnough) {
                host.ask();
                ++asked;
            }
            --askers;
        });
    }

    std::size_t turns = 0;
    bool hasHappened = host.runUntil([&] {
        ++turns;
        if (turns % 200 == 0)
            replaceOne(turns / 200);
        if (turns % 150 == 0) {
            observers.stop(); // in the middle of whatever it is about
            observers.start();
        }
        if (turns % 20 == 0)
            observers.refreshWindows(dockEligibleOwnerPIDs(workspace));
        if (turns % 30 == 0)
            std::exchange(isTracking, !isTracking) ? tracker.stop() : tracker.start();
        tracker.preferredDisplayID();
        return events > 300 && attached > 20 && ended > 5 && asked > 300;
    });
    isEnough = true;

    EXPECT_TRUE(hasHappened) << events << " events, " << attached << " attached, " << ended
                             << " ended, " << asked << " asked";
    // They use what ends with this test, and a loaded machine may leave them behind.
    EXPECT_TRUE(host.runUntil([&] { return askers == 0; }));
    applications.clear();
    EXPECT_TRUE(host.runUntil([&] { return host.ask() == 0; })) << host.ask() << " windows left";
}

TEST_F(SideBySideTest, windowsAreShortenedAndBadgesPolledWhileApplicationsComeAndGo)
{
    Host host;
    auto& services = host.services;
    Trace trace;
    WindowStore store{host.dispatch, services.accessibility(), services.windowServer(),
        services.displays(), services.workspace(), trace};
    const SpaceWindows spaces{services.windowServer(), services.displays()};
    int shortened = 0;
    int asking = 0;
    int ended = 0;
    // They end while applications are being asked.
    std::optional<BadgeService> badges;
    std::optional<WindowAvoidanceManager> avoidance;
    const auto begin = [&] {
        badges.emplace(host.dispatch, services.launchServices(), trace);
        badges->start();
        avoidance.emplace(store, host.dispatch, services.accessibility(), services.windowServer(),
            services.displays(),
            WindowAvoidanceManager::Bars{
                [] { return std::set{SpaceID{1}}; },
                [] { return std::vector<std::size_t>{}; },
                [&] { return spaces.getSpaces(); },
            });
        avoidance->setBarHeight(36);
    };
    begin();
    store.onChange = [&] {
        for (auto& [id, window] : store.windows())
            shortened += window.frame.height > 250 && window.frame.height < kTall;
        avoidance->scheduleAdjustment(Duration::zero());
    };
    auto launches
        = services.workspace().didLaunch.subscribe([&](const RunningApplication& launched) {
              store.addWindowsForPID(launched.pid);
              store.startLifecycleMonitoring(launched.pid, seconds(0.1));
          });
    auto ends = services.workspace().didTerminate.subscribe([&](const RunningApplication& gone) {
        store.removeWindows(gone.pid);
        ++ended;
    });

    std::size_t turns = 0;
    EXPECT_TRUE(host.runUntil([&] {
        if (++turns % 200 == 0)
            replaceOne(turns / 200, {.pause = 300'000, .height = kTall});
        if (turns % 10 == 0) {
            for (auto pid : store.trackedPIDs())
                store.startLifecycleMonitoring(pid, Duration::zero());
        }
        if (turns % 20 == 0) {
            services.launchServices().answersMayHaveChanged.emit();
            asking += !badges->attentionByBundleID().value().empty();
            badges->clearAttention("sample", {});
        }
        if (turns % 100 == 0)
            begin();
        return shortened > 5 && asking > 5 && ended > 3;
    })) << shortened
        << " shortened, " << asking << " asking, " << ended << " ended";
}

}
