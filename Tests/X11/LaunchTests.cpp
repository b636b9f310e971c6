#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fstream>

#include "Tests/X11/Support/DesktopFixture.h"

namespace quorvel::x11tests {

/// Two pinned applications: the program of one writes down how it was started, and the test opens
/// its window, as a toolkit does it; the program of the other is missing.
class Launches : public UnderEachManager {
protected:
    Launches()
    {
        const auto program = server.addProgram("program",
            "cd '" + server.folder().string()
                + "'; echo \"$DESKTOP_STARTUP_ID $$\" > started.part; mv started.part started\n"
                  "exec sleep 600");
        server.addApplication("launched", "Launched", "Exec=" + program);
        server.addApplication("broken", "Broken", "Exec=missing-program");
        std::ofstream(server.settingsFile()) << R"({"groupWindowsByApp": false, "pinnedApps":
            [{"id": "launched", "d": 1}, {"id": "broken", "d": 1}]})";
    }

public:
    ~Launches() override
    {
        if (process > 0)
            ::kill(process, SIGKILL);
    }

protected:
    void clickPin(const Bar& bar, const std::string& id)
    {
        const auto pins = bar.state().panel().pins;
        const auto pin = std::ranges::find(pins, id, &State::Chip::id);
        ASSERT_NE(pin, pins.end());
        pointer.click(pin->frame);
        pointer.moveTo(5, 5); // while it is over them, pins stay
    }
    /// The token with which the program was started.
    std::string token()
    {
        EXPECT_TRUE(eventually([&] { return std::filesystem::exists(started); }));
        std::ifstream file{started};
        std::string words;
        file >> words >> process;
        return words;
    }
    static std::uint32_t timeOf(const std::string& token)
    {
        const auto time = token.rfind("_TIME");
        return time == std::string::npos
            ? 0
            : static_cast<std::uint32_t>(std::stoul(token.substr(time + 5)));
    }

    const std::filesystem::path started = server.folder() / "started";
    pid_t process = 0;
    Client client{server};
};

// Faults: a token without a time, or with a stale one, so that the window comes behind the one the
// user was in; a pin that stays beside the window; a click after which nothing happens and nobody
// says why; a program that ends with the bar.
TEST_P(Launches, giveTheNewWindowTheFocusAndOutliveTheBar)
{
    std::optional<Bar> bar{std::in_place, server};
    ASSERT_TRUE(bar->appears());
    const auto busy = client.open({.title = "busy", .applicationClass = "Busy"});
    ASSERT_TRUE(becomesActive(busy));
    ASSERT_TRUE(settles(*bar));
    // Its user was last busy in it just now: managers compare that with the token's time.
    Connection clock{server.display()};
    client.connection().setNumbers(busy, "_NET_WM_USER_TIME", "CARDINAL", {clock.serverTime()});
    client.connection().sync();

    clickPin(*bar, "launched");
    const auto given = token();
    ASSERT_NE(timeOf(given), 0u) << given;
    const auto window = client.open({.title = "new",
        .applicationClass = "Launched",
        .userTime = timeOf(given),
        .startupID = given});
    EXPECT_TRUE(becomesActive(window));
    EXPECT_TRUE(eventually([&] {
        const auto panel = bar->state().panel();
        return panel.pins.size() == 1 && panel.chips.size() == 2;
    }));

    clickPin(*bar, "broken");
    EXPECT_TRUE(eventually([&] {
        return bar->log().find("cannot start Broken: missing-program") != std::string::npos;
    })) << bar->log();

    bar.reset();
    EXPECT_EQ(::kill(process, 0), 0);
}

INSTANTIATE_TEST_SUITE_P(, Launches,
    testing::Values(
        ManagerKind::openbox, ManagerKind::xfwm4, ManagerKind::metacity, ManagerKind::icewm),
    managerName);

}
