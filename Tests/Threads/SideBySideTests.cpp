// What crosses threads, on real ones and on a real X server, so that the thread sanitizer sees it:
// the observers, the tracker of the pointer, and questions to the mirror from every side.
#include <atomic>
#include <csignal>
#include <cstdlib>

#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "Quorvel/Core/MouseDisplayTracker.h"
#include "Quorvel/Platform/WindowServer.h"
#include "Quorvel/Platform/Workspace.h"
#include "Quorvel/Skylight/AXObserverManager.h"
#include "Quorvel/Skylight/Minimal.h"
#include "Quorvel/Skylight/SpaceWindows.h"
#include "Tests/X11/Support/Client.h"
#include "Tests/X11/Support/HostServices.h"
#include "Tests/X11/Support/WindowManager.h"

namespace quorvel::x11tests {

namespace {

/// An application whose windows come, change and go without pause, until it dies of a sudden.
class RestlessApplication {
public:
    explicit RestlessApplication(const XServer& server) : m_pid(fork())
    {
        if (m_pid != 0)
            return;
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        Client client(server);
        for (int i = 0;; ++i) {
            auto window = client.open({.title = "Window " + std::to_string(i)});
            usleep(20'000);
            client.setTitle(window, "Title " + std::to_string(i));
            client.resize(window, 200 + i % 50, 200);
            usleep(20'000);
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
        auto connectionID = server.mainConnection();
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
            server.spacesOfWindows(connectionID, kAllSpacesMask, {*window.windowNumber});
        }
        for (auto& display :
            server.managedDisplaySpaces(connectionID).value_or(std::vector<ManagedDisplay>{})) {
            for (auto& space : display.spaces)
                server.windowsOfSpaces(
                    connectionID, {SpaceID{space.id64.value_or(0)}}, kSpaceWindowOptions);
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
    void replaceOne(std::size_t number)
    {
        applications[number % applications.size()] = std::make_unique<RestlessApplication>(server);
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

}
