#include <csignal>
#include <tuple>

#include "Tests/X11/Support/DesktopFixture.h"

namespace quorvel::x11tests {

namespace {

enum class Ending { killed, replaced };

std::string caseName(const testing::TestParamInfo<std::tuple<ManagerKind, Ending>>& info)
{
    const auto [kind, ending] = info.param;
    const char* const names[]{"Killed", "Replaced"};
    return nameOf(kind) + names[static_cast<int>(ending)];
}

}

class WindowManagerRestart : public testing::TestWithParam<std::tuple<ManagerKind, Ending>>,
                             public DesktopFixture {
protected:
    WindowManagerRestart() : DesktopFixture(std::get<ManagerKind>(GetParam())) { }

    /// Windows in every state that a restart could lose; gives an ordinary one.
    xcb_window_t openWindows()
    {
        const auto minimised = client.open({.title = "minimised"});
        client.open({.title = "elsewhere", .desktop = 1});
        const auto everywhere = client.open({.title = "everywhere"});
        const auto ordinary = client.open({.title = "ordinary"});
        client.open({.title = "another"});
        EXPECT_TRUE(eventually([&] { return desktop.taskbarClients().size() == 5; }));
        desktop.moveToDesktop(everywhere, kAllDesktops);
        EXPECT_TRUE(eventually([&] { return desktop.desktopOf(everywhere) == kAllDesktops; }));
        desktop.minimise(minimised);
        EXPECT_TRUE(eventually([&] { return desktop.isHidden(minimised); }));
        return ordinary;
    }

    void endManager()
    {
        switch (std::get<Ending>(GetParam())) {
        case Ending::killed:
            return manager.end(SIGKILL);
        case Ending::replaced:
            return manager.beginReplace();
        }
    }

    Client client{server};
};

// Faults: chips vanish or jump while no manager runs, minimised windows come back as ordinary ones,
// the panel is left where the dead manager dropped it, its clicks go nowhere.
TEST_P(WindowManagerRestart, leavesEveryChipAndThePanelInPlace)
{
    const auto ordinary = openWindows();
    Bar bar(server);
    ASSERT_TRUE(bar.appears());
    ASSERT_TRUE(bar.agreesWith(desktop));
    const auto panel = bar.state().panel();
    ASSERT_EQ(panel.chips.size(), 4u);
    const auto holdsStill = [&]() -> testing::AssertionResult {
        const auto now = bar.state();
        const auto shown = now.panel();
        if (shown.chips != panel.chips)
            return testing::AssertionFailure()
                << "chips " << testing::PrintToString(shown.chips) << " on space " << shown.space
                << " of " << testing::PrintToString(now.windows);
        return testing::AssertionResult(shown.frame == panel.frame) << "the panel has moved";
    };

    endManager();
    for (int look = 0; look < 10; ++look)
        ASSERT_TRUE(holdsStill()) << "without a window manager";
    if (std::get<Ending>(GetParam()) != Ending::replaced)
        manager.beginStart();
    while (!manager.isManaging() && !HasFatalFailure())
        ASSERT_TRUE(holdsStill()) << "while the window manager starts";

    const auto isRightAgain = [&] {
        EXPECT_TRUE(holdsStill()) << "after the window manager's start";
        return agrees(bar.state(), desktop);
    };
    EXPECT_TRUE(eventually(isRightAgain));
    EXPECT_TRUE(eventually([&] { return desktop.workArea().bottom() == panel.frame.y; }));
    ASSERT_TRUE(bar.isRunning());

    clickChip(bar, ordinary);
    const auto answered
        = [&] { return (desktop.activeWindow() == ordinary) != desktop.isHidden(ordinary); };
    EXPECT_TRUE(eventually(answered));
    EXPECT_TRUE(bar.agreesWith(desktop));
}

INSTANTIATE_TEST_SUITE_P(, WindowManagerRestart,
    testing::Combine(testing::Values(ManagerKind::openbox, ManagerKind::xfwm4),
        testing::Values(Ending::killed, Ending::replaced)),
    caseName);

}
