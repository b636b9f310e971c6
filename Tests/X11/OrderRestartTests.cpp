#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <map>
#include <memory>
#include <random>
#include <set>

#include "Tests/Support/Seed.h"
#include "Tests/X11/Support/DesktopFixture.h"
#include "Tests/X11/Support/MonitorLayout.h"

namespace quorvel::x11tests {

namespace {

constexpr std::size_t kRestartWindows = 40;
constexpr std::size_t kFullRestarts = 50;

const std::vector<Frame> kOneMonitor{{0, 0, 1280, 800}};
const std::vector<Frame> kTwoMonitors{{0, 0, 640, 800}, {640, 0, 640, 800}};

enum class Restart {
    asked,
    killed,
    replaced,
    managerKilled,
    managerReplaced,
    killedWithTheManager,
    monitorGone,
    replacedWithoutTheMonitor,
};
constexpr int kRestarts = 8;

/// For each space its items: windows by the server's numbers, a group by its windows.
using Order = std::vector<std::pair<std::uint64_t, std::vector<std::set<xcb_window_t>>>>;

Order orderIn(const State& state)
{
    Order order;
    for (const auto& space : state.spaces) {
        auto& items = order.emplace_back(space.id, std::vector<std::set<xcb_window_t>>{}).second;
        for (const auto& item : space.items) {
            auto& windows = items.emplace_back();
            for (const auto& window : state.windows) {
                if (std::ranges::count(item.windows, window.id) > 0)
                    windows.insert(window.xid.value_or(XCB_NONE));
            }
        }
    }
    return order;
}

}

class OrderRestarts : public testing::TestWithParam<ManagerKind> {
protected:
    OrderRestarts() { monitors.set(kOneMonitor); }

    void set(const std::string& assignment) const
    {
        const auto result
            = runProgram(server.environment(), server.folder(), {"--set", assignment});
        ASSERT_EQ(result.status, 0) << result.error;
    }
    void openWindows()
    {
        for (std::size_t i = 0; i < kRestartWindows; ++i) {
            const auto number = std::to_string(i % 6);
            client.open({.title = "window " + std::to_string(i),
                .applicationClass = "Sample" + number,
                .desktop = i % 3 == 0 ? 1u : 0u});
        }
        ASSERT_TRUE(eventually([&] { return bar->state().windows.size() == kRestartWindows; }));
        ASSERT_TRUE(desktop.finishRequests());
    }
    /// Chips are on their way for a moment when a row or its room has changed.
    void waitForChipsToRest() const
    {
        std::vector<Frame> last;
        ASSERT_TRUE(eventually([&] {
            std::vector<Frame> now;
            for (const auto& chip : bar->state().panel().chips)
                now.push_back(chip.frame);
            return !now.empty() && std::exchange(last, now) == now;
        }));
    }
    /// Puts a chip behind another one.
    void drag(std::size_t chip, std::size_t other)
    {
        waitForChipsToRest();
        const auto before = orderIn(bar->state());
        const auto chips = bar->state().panel().chips;
        ASSERT_LT(std::max(chip, other), chips.size());
        const auto& to = chips[other].frame;
        pointer.drag(chips[chip].frame, to.x + to.width * 3 / 4, to.y + to.height / 2);
        pointer.moveTo(5, 5);
        ASSERT_TRUE(eventually([&] { return orderIn(bar->state()) != before; }));
    }
    testing::AssertionResult stands(const Order& order) const
    {
        return eventually([&] {
            const auto now = orderIn(bar->state());
            return testing::AssertionResult(now == order)
                << testing::PrintToString(now) << " instead of " << testing::PrintToString(order);
        });
    }

    void startBar()
    {
        bar = std::make_unique<Bar>(server);
        ASSERT_TRUE(bar->appears());
    }
    void replaceBar()
    {
        auto next = std::make_unique<Bar>(server, std::vector<std::string>{"--replace"});
        ASSERT_EQ(bar->process().waitForEnd(), 0);
        bar = std::move(next);
        ASSERT_TRUE(bar->appears());
    }
    void happen(Restart event)
    {
        switch (event) {
        case Restart::asked:
            bar.reset();
            return startBar();
        case Restart::killed:
            bar->kill();
            return startBar();
        case Restart::replaced:
            return replaceBar();
        case Restart::managerKilled:
            manager->end(SIGKILL);
            manager->beginStart();
            return manager->waitUntilManaging();
        case Restart::managerReplaced:
            manager->beginReplace();
            return manager->waitUntilManaging();
        case Restart::killedWithTheManager:
            manager->end(SIGKILL);
            bar->kill();
            bar = std::make_unique<Bar>(server);
            manager->beginStart();
            manager->waitUntilManaging();
            ASSERT_TRUE(bar->appears());
            return;
        case Restart::monitorGone:
            monitors.set(kOneMonitor);
            ASSERT_TRUE(hasBars(1));
            return;
        case Restart::replacedWithoutTheMonitor:
            monitors.set(kOneMonitor);
            ASSERT_TRUE(hasBars(1));
            return replaceBar();
        }
    }
    testing::AssertionResult hasBars(std::size_t count) const
    {
        return eventually([&] { return bar->state().visiblePanels().size() == count; });
    }

    XServer server;
    MonitorLayout monitors{server};
    Desktop desktop{server.display()};
    std::unique_ptr<WindowManager> manager
        = std::make_unique<WindowManager>(server, desktop, GetParam());
    Pointer pointer{server.display()};
    Client client{server};
    std::unique_ptr<Bar> bar;
};

// Faults: chips back in the order in which the server or a new window manager lists their windows;
// an order that a bar without windows, without spaces or with half of them has written over.
TEST_P(OrderRestarts, leaveEveryChipInItsPlace)
{
    std::mt19937 random(test::seed());
    ASSERT_NO_FATAL_FAILURE(startBar());
    ASSERT_NO_FATAL_FAILURE(set("showOnAllDisplays=true"));
    ASSERT_NO_FATAL_FAILURE(openWindows());
    ASSERT_NO_FATAL_FAILURE(drag(6, 1));
    ASSERT_NO_FATAL_FAILURE(drag(2, 8));
    // A drag of groups takes the place of drags of windows, so it is done on the other desktop.
    ASSERT_NO_FATAL_FAILURE(set("groupWindowsByApp=true"));
    desktop.switchTo(1);
    ASSERT_TRUE(eventually([&] {
        const auto panel = bar->state().panel();
        return panel.space == 2 && panel.chips.size() == 2;
    }));
    ASSERT_NO_FATAL_FAILURE(drag(0, 1));
    const auto groups = orderIn(bar->state());
    desktop.switchTo(0);
    ASSERT_NO_FATAL_FAILURE(set("groupWindowsByApp=false"));
    ASSERT_TRUE(eventually([&] { return bar->state().panel().chips.size() > 20; }));
    const auto singles = orderIn(bar->state());
    monitors.set(kTwoMonitors);
    ASSERT_TRUE(hasBars(2));
    ASSERT_NO_FATAL_FAILURE(happen(Restart::asked)); // and everything is written

    std::vector<Restart> events;
    for (int event = 0; event < kRestarts; ++event)
        events.push_back(Restart{event});
    const std::size_t rounds = std::getenv("QUORVEL_TEST_FULL") ? kFullRestarts : events.size();
    for (std::size_t round = 0; round < rounds; ++round) {
        if (round % events.size() == 0)
            std::shuffle(events.begin(), events.end(), random);
        const auto event = events[round % events.size()];
        SCOPED_TRACE(std::to_string(round) + ": event " + std::to_string(static_cast<int>(event)));
        const bool isGrouped = random() % 2 == 0;
        ASSERT_NO_FATAL_FAILURE(
            set(isGrouped ? "groupWindowsByApp=true" : "groupWindowsByApp=false"));
        ASSERT_NO_FATAL_FAILURE(happen(event));
        ASSERT_TRUE(stands(isGrouped ? groups : singles));
        monitors.set(kTwoMonitors);
        ASSERT_TRUE(hasBars(2));
        ASSERT_TRUE(stands(isGrouped ? groups : singles));
    }
}

// Faults: windows of another log-in are believed by their numbers; those of one title are not told
// apart by their roles; the end of the windows, before that of the bar, empties the order.
TEST_P(OrderRestarts, outlastALogOut)
{
    ASSERT_NO_FATAL_FAILURE(startBar());
    std::vector<WindowOptions> windows;
    for (const std::string application : {"Editor", "Painter"}) {
        for (const std::string role : {"main", "tools", "colours"})
            windows.push_back({.title = "untitled", .applicationClass = application, .role = role});
    }
    std::map<xcb_window_t, std::string> names;
    const auto open = [&](const WindowOptions& window) {
        const auto number = client.open(window);
        names[number] = window.applicationClass + " " + *window.role;
        ASSERT_TRUE(DesktopFixture::getsChip(*bar, number));
    };
    const auto shown = [&] {
        std::vector<std::string> order;
        const auto spaces = orderIn(bar->state());
        for (const auto& item : spaces.at(0).second)
            order.push_back(names[*item.begin()]);
        return order;
    };
    for (const auto& window : windows)
        ASSERT_NO_FATAL_FAILURE(open(window));
    ASSERT_NO_FATAL_FAILURE(drag(4, 0));
    const auto before = shown();

    for (const auto window : std::vector(client.windows()))
        client.destroy(window);
    ASSERT_TRUE(eventually([&] { return bar->state().windows.empty(); }));
    bar.reset();
    auto& connection = desktop.connection();
    connection.setText(connection.root(), "_QUORVEL_SESSION", "STRING", "");
    connection.sync();
    ASSERT_NO_FATAL_FAILURE(startBar());
    std::mt19937 random(test::seed());
    std::shuffle(windows.begin(), windows.end(), random);
    for (const auto& window : windows)
        ASSERT_NO_FATAL_FAILURE(open(window));
    EXPECT_EQ(shown(), before);
}

QUORVEL_UNDER_EACH_MANAGER(OrderRestarts);

}
