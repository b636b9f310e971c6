#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <random>
#include <sstream>

#include "Tests/X11/Support/DesktopFixture.h"

namespace quorvel::x11tests {

namespace {

constexpr int kApplications = 5;
constexpr int kWindowsEach = 6;

/// What the trace tells of the chip that is lit.
struct FocusLog {
    /// The longest time, in seconds, for which another chip was lit between a click that activates
    /// and the next click.
    double longestWrong = 0;
    int activations = 0;
    std::string worst;

    void read(std::istream& trace)
    {
        std::string line;
        while (std::getline(trace, line))
            take(line);
    }

private:
    void take(const std::string& line)
    {
        std::istringstream words(line);
        double time = 0;
        std::string what, verb, id;
        if (!(words >> time >> what >> verb >> id))
            return;
        if (what == "activateWindow" && verb == "begin") {
            close(time);
            m_wanted = id;
            m_wantedSince = time;
            ++activations;
        } else if (what == "minimizeWindow") {
            close(time);
            m_wanted.clear();
        } else if (what == "published") {
            close(time);
            m_lit = id;
            m_since = time;
        }
    }
    void close(double now)
    {
        const double wrong = now - std::max(m_since, m_wantedSince);
        if (!m_wanted.empty() && m_lit != m_wanted && wrong > longestWrong) {
            longestWrong = wrong;
            worst = "lit " + m_lit + " instead of " + m_wanted;
        }
    }

    std::string m_wanted;
    double m_wantedSince = 0;
    std::string m_lit;
    double m_since = 0;
};

}

class ClickStorms : public UnderEachManager { };

// Faults: a click lands on another window, is refused by the manager, or is undone by news that is
// older than it; another chip flashes on the way.
TEST_P(ClickStorms, bringTheClickedWindowAndLightNoOtherOnTheWay)
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
    ASSERT_TRUE(eventually(5s, [&] { return desktop.taskbarClients().size() == kWindows; }));
    const auto traceFile = server.folder() / "trace";
    Bar bar(server, {"--trace=" + traceFile.string()});
    ASSERT_TRUE(bar.appears());
    ASSERT_TRUE(settles(bar));
    const auto state = bar.state();
    ASSERT_TRUE(state);
    const auto windows = desktop.taskbarClients();

    const auto* chosen = std::getenv("QUORVEL_TEST_SEED");
    const auto seed
        = chosen ? std::uint32_t(std::strtoul(chosen, nullptr, 10)) : std::random_device{}();
    const int clicks = std::getenv("QUORVEL_TEST_FULL") ? 500 : 150;
    std::printf("seed %u, %d clicks\n", seed, clicks);
    std::mt19937 random{seed};
    int activated = 0;
    // Its chip may be lit for some milliseconds more than its window has the focus; no hand comes
    // back so soon.
    std::optional<xcb_window_t> before;
    for (int click = 0; click < clicks; ++click) {
        // One in six on the window that has the focus, once the user can see that it has.
        const bool isSecond = random() % 6 == 0;
        if (isSecond) {
            ASSERT_TRUE(bar.agreesWith(desktop, 3s)) << click;
        }
        const auto focused = desktop.focusedClient();
        auto window = windows[random() % windows.size()];
        if (isSecond && focused)
            window = *focused;
        else if (window == focused || window == before)
            continue;
        const auto* const chip = state->chipOf(window);
        ASSERT_TRUE(chip);
        const bool hadFocus = focused == window;
        before = focused;
        pointer.click(chip->frame);
        if (hadFocus) {
            ASSERT_TRUE(eventually(2s, [&] { return desktop.isHidden(window); })) << click;
            // Which window has the focus then is the manager's choice; a click must know it.
            ASSERT_TRUE(bar.agreesWith(desktop, 3s)) << click;
        } else {
            ++activated;
            ASSERT_TRUE(eventually(
                2s, [&] { return desktop.activeWindow() == window && !desktop.isHidden(window); }))
                << "click " << click;
        }
    }
    pointer.moveTo(5, 5);
    ASSERT_TRUE(settles(bar));

    FocusLog log;
    std::ifstream trace(traceFile);
    log.read(trace);
    EXPECT_EQ(log.activations, activated);
    EXPECT_LT(log.longestWrong, 0.1 * kSlowness) << log.worst;
    std::printf("longest wrong highlight %.1f ms\n", log.longestWrong * 1000);
}

QUORVEL_UNDER_EACH_MANAGER(ClickStorms);

}
