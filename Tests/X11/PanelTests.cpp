#include <csignal>
#include <filesystem>
#include <fstream>

#include "Tests/X11/Support/DesktopFixture.h"
#include "Tests/X11/Support/MonitorLayout.h"

namespace quorvel::x11tests {

class Panel : public BarUnderEachManager {
protected:
    Client client{server};
};

// Faults: no room kept, a strut measured from the wrong edge or of the old height, room that is not
// given back; a film that is made shorter for the bar; a bar below it that takes the keyboard.
TEST_P(Panel, keepsItsStripOfTheScreenWhileTheBarRuns)
{
    const auto window = client.open({.title = "large"});
    ASSERT_TRUE(bar.agreesWith(desktop));
    const auto panel = bar.state().panel().frame;
    EXPECT_EQ(panel.bottom(), 800);
    EXPECT_EQ(panel.width, 1280);

    desktop.maximise(window);
    EXPECT_TRUE(eventually([&] { return desktop.frame(window).bottom() == panel.y; }))
        << desktop.frame(window).bottom() << ", the panel begins at " << panel.y;

    desktop.setState(window, "FULLSCREEN", true);
    EXPECT_TRUE(eventually([&] { return desktop.frame(window).bottom() == 800; }));
    // The bar takes a tenth of a second before it shortens what reaches under it.
    EXPECT_TRUE(staysTrue(500ms, [&] { return desktop.frame(window).bottom() == 800; }));
    const auto focus = [&] { return run({"--focus"}).status; };
    EXPECT_TRUE(eventually([&] { return focus() == 1; })) << "nobody would see what the keys do";
    desktop.setState(window, "FULLSCREEN", false);
    EXPECT_TRUE(eventually([&] { return desktop.frame(window).bottom() == panel.y; }));
    EXPECT_TRUE(eventually([&] { return focus() == 0; }));

    EXPECT_EQ(run({"--set", "barSize=xl"}).status, 0);
    EXPECT_TRUE(eventually([&] { return desktop.workArea().bottom() == 800 - 54; }));

    bar.process().signal(SIGTERM);
    EXPECT_EQ(bar.process().waitForEnd(), 0);
    EXPECT_TRUE(eventually([&] { return desktop.workArea().bottom() == 800; }));
    EXPECT_TRUE(eventually([&] { return desktop.frame(window).bottom() == 800; }));
}

// Faults: no bar and no strut at a scale that is no number; a scale of before that stays.
TEST_P(Panel, heedsOnlyAScaleThatIsANumber)
{
    const auto hasHeight = [&](int height) {
        return eventually([&] { return desktop.workArea().bottom() == 800 - height; });
    };
    for (const std::string_view number : {"nan", "-nan", "nan(1)", "-inf", "1e999"}) {
        auto& connection = desktop.connection();
        connection.setText(connection.root(), "RESOURCE_MANAGER", "STRING", "Xft.dpi:\t192\n");
        ASSERT_TRUE(hasHeight(2 * 36));
        connection.setText(connection.root(), "RESOURCE_MANAGER", "STRING",
            "Xft.dpi:\t" + std::string{number} + "\n");
        EXPECT_TRUE(hasHeight(36)) << number << ": " << desktop.workArea();
    }
}

// Faults: a bar that another program's request takes away for good; one that comes back without its
// room, or as a window that the manager shows on one desktop only.
TEST_P(Panel, comesBackWhenItsWindowIsTakenAway)
{
    const auto isInPlace = [&] {
        const auto docks = desktop.docks();
        return docks.size() == 1 && desktop.isViewable(docks[0])
            && desktop.frame(docks[0]).bottom() == 800 && desktop.workArea().bottom() < 800
            && desktop.desktopOf(docks[0]) == kAllDesktops;
    };
    ASSERT_TRUE(eventually(isInPlace));
    const auto first = desktop.docks()[0];
    auto* const raw = desktop.connection().get();

    for (int round = 0; round < 2; ++round) {
        xcb_unmap_window(raw, first);
        desktop.connection().sync();
        EXPECT_TRUE(eventually(isInPlace)) << "unmapped";
    }
    xcb_destroy_window(raw, first);
    desktop.connection().sync();
    EXPECT_TRUE(eventually(isInPlace)) << "destroyed";
    const auto window = client.open({.title = "after it"});
    ASSERT_TRUE(settles(bar));
    clickChip(bar, window);
    EXPECT_TRUE(eventually([&] { return desktop.isHidden(window); })) << "it hears of no click";
}

QUORVEL_UNDER_EACH_MANAGER(Panel);

// The thread sanitizer has a thread of its own that wakes up; and who is woken is the same in all
// builds and under all managers.
#if !QUORVEL_IS_SANITIZED

namespace {

/// How often the threads of a process have gone to sleep, and so been woken.
long wakeUps(pid_t pid)
{
    const std::string key = "voluntary_ctxt_switches:";
    long sum = 0;
    for (const auto& task :
        std::filesystem::directory_iterator("/proc/" + std::to_string(pid) + "/task")) {
        std::ifstream status(task.path() / "status");
        for (std::string line; std::getline(status, line);) {
            if (line.starts_with(key))
                sum += std::stol(line.substr(key.size()));
        }
    }
    return sum;
}

long wakeUpsWithin(pid_t pid, std::chrono::milliseconds span)
{
    const auto before = wakeUps(pid);
    std::this_thread::sleep_for(span);
    return wakeUps(pid) - before;
}

}

class IdlePanel : public UnderOpenbox { };

// Faults: a timer that nobody needs, which keeps a laptop's processor awake; a pointer that is
// followed because there is a choice of monitors.
TEST_F(IdlePanel, sleepsWhileNothingHappens)
{
    MonitorLayout monitors{server};
    monitors.set({{0, 0, 400, 800}, {400, 0, 400, 800}, {800, 0, 480, 800}});
    Client client{server};
    Bar bar{server};
    ASSERT_TRUE(bar.appears());
    client.open({.title = "quiet"});
    ASSERT_TRUE(bar.agreesWith(desktop));

    // New windows are looked at again for up to 12 s, and the badges are asked for every seven: one
    // thread asks, and tells another. What a busy machine adds does not last, as a timer does.
    const auto pid = bar.process().pid();
    EXPECT_TRUE(eventually([&] { return wakeUpsWithin(pid, 3s) == 0; }));
    EXPECT_TRUE(eventually([&] { return wakeUpsWithin(pid, 6s) <= 4; }));
    EXPECT_TRUE(bar.agreesWith(desktop));
}

#endif

}
