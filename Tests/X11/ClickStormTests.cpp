#include <cstdlib>
#include <fstream>
#include <random>

#include "Tests/Support/Sanitized.h"
#include "Tests/Support/Seed.h"
#include "Tests/X11/Support/DesktopFixture.h"

namespace quorvel::x11tests {

namespace {

constexpr int kApplications = 5;
constexpr int kWindowsEach = 6;

}

class ClickStorms : public UnderEachManager { };

// Faults: a click lands on another window, is refused by the manager, or is undone by news that is
// older than it.
TEST_P(ClickStorms, bringTheClickedWindow)
{
    // So that all chips are within reach.
    std::ofstream(server.settingsFile()) << R"({"groupWindowsByApp": false, "barSize": "small"})";
    desktop.setDesktopCount(1);
    std::vector<std::unique_ptr<ClientProcess>> applications;
    for (int i = 0; i < kApplications; ++i) {
        applications.push_back(std::make_unique<ClientProcess>(server, [i](Client& client, char) {
            for (int n = 0; n < kWindowsEach; ++n)
                client.open({.title = std::to_string(i) + "." + std::to_string(n),
                    .applicationClass = "Sample" + std::to_string(i)});
        }));
        applications.back()->order('o');
        ASSERT_TRUE(applications.back()->finish());
    }
    constexpr auto kWindows = std::size_t(kApplications) * kWindowsEach;
    ASSERT_TRUE(eventually([&] { return desktop.taskbarClients().size() == kWindows; }));
    Bar bar(server);
    ASSERT_TRUE(bar.appears());
    ASSERT_TRUE(settles(bar));
    const auto state = bar.state();
    const auto windows = desktop.taskbarClients();

    const auto seed = test::seed();
    const int clicks = std::getenv("QUORVEL_TEST_FULL") ? 500 : test::kIsSanitized ? 60 : 150;
    std::mt19937 random{seed};
    // Its chip may be lit for some milliseconds more than its window has the focus; no hand comes
    // back so soon.
    std::optional<xcb_window_t> before;
    for (int click = 0; click < clicks; ++click) {
        // One in six on the window that has the focus, once the user can see that it has.
        const bool isSecond = random() % 6 == 0;
        if (isSecond) {
            ASSERT_TRUE(bar.agreesWith(desktop)) << click;
        }
        const auto focused = desktop.focusedClient();
        auto window = windows[random() % windows.size()];
        if (isSecond && focused)
            window = *focused;
        else if (window == focused || window == before)
            continue;
        ASSERT_TRUE(state.chipOf(window));
        const bool hadFocus = focused == window;
        before = focused;
        pointer.click(state.chipFrame(window));
        if (hadFocus) {
            ASSERT_TRUE(eventually([&] { return desktop.isHidden(window); })) << click;
            // Which window has the focus then is the manager's choice; a click must know it.
            ASSERT_TRUE(bar.agreesWith(desktop)) << click;
        } else {
            ASSERT_TRUE(eventually([&] {
                return desktop.activeWindow() == window && !desktop.isHidden(window);
            })) << "click "
                << click;
        }
    }
    pointer.moveTo(5, 5);
    ASSERT_TRUE(settles(bar));
}

QUORVEL_UNDER_EACH_MANAGER(ClickStorms);

}
