// What the menus of the bar do to the settings, and what they offer to whom.
#include "Tests/Support/BarFixture.h"

namespace quorvel::test {

namespace {

struct BarMenuTest : BarFixture {
    ProcessID mail = desktop.launch({.name = "Mail", .bundleIdentifier = "mail"});
    WindowID inbox = desktop.open(mail, {.title = "Inbox"});

    BarMenuTest() { start(); }
    void openBarMenu()
    {
        auto gap = panel().bounds().centre();
        panel().click({gap.x + 200, gap.y}, PointerButton::secondary);
        desktop.drain();
        ASSERT_TRUE(desktop.surfaces().menu());
    }
    void openMenuOf(WindowID window)
    {
        clickChip(window, PointerButton::secondary);
        ASSERT_TRUE(desktop.surfaces().menu());
    }
};

}

// Faults: a window that cannot be reached from one of the menus, or that is offered where there is
// none; a second one, where the one that is open lies hidden.
TEST_F(BarMenuTest, theSettingsAreOpenedFromBothMenusAndTheCommandLine)
{
    auto& window = desktop.settingsWindow();
    openBarMenu();
    EXPECT_TRUE(desktop.surfaces().chooseMenuItem("Settings\u2026"));
    desktop.drain();
    EXPECT_EQ(window.shows(), 1);
    panel().click(content().menuButtonFrame().centre(), PointerButton::secondary);
    EXPECT_TRUE(desktop.surfaces().chooseMenuItem("Settings\u2026"));
    desktop.drain();
    EXPECT_EQ(desktop.control().send({"--settings"})->exitStatus, 0);
    EXPECT_EQ(window.shows(), 3);
    EXPECT_EQ(window.source()->apply({SettingsChange::Set{"barSize", "xl"}}), std::nullopt);
    EXPECT_EQ(runtime->userSettings().barSize(), BarSize::xl);

    auto program = desktop.control().connect();
    program->takeLines();
    EXPECT_EQ(desktop.control().send({"--settings"})->exitStatus, 0);
    EXPECT_THAT(program->takeLines(), ElementsAre(R"({"present":true})"));
    EXPECT_EQ(window.shows(), 3);
    program->hangUp();
    window.setCanShow(false);
    EXPECT_EQ(desktop.control().send({"--settings"})->exitStatus, 1);

    window.didFail.emit();
    EXPECT_THAT(panel().render().texts(), Contains("The settings could not be opened"));
    runtime.reset();
    EXPECT_FALSE(window.source()) << "it would show what is gone";
    desktop.removeSettingsWindow();
    start();
    openBarMenu();
    EXPECT_FALSE(desktop.surfaces().chooseMenuItem("Settings\u2026"));
    EXPECT_EQ(desktop.control().send({"--settings"})->exitStatus, 1);
}

// Fault: the entry bears another name than the program it opens.
TEST_F(BarMenuTest, theActivityMonitorIsCalledWhatItIs)
{
    desktop.workspace().install("org.gnome.SystemMonitor", "/Applications/Observer.app");
    openBarMenu();
    EXPECT_TRUE(desktop.surfaces().chooseMenuItem("Observer"));
    desktop.drain();
    EXPECT_THAT(desktop.workspace().opened(), Contains("/Applications/Observer.app"));
}

// Fault: a pin that opens nothing.
TEST_F(BarMenuTest, aPinIsMadeAndOpenedByMenus)
{
    desktop.workspace().install("mail", "/mail");
    openMenuOf(inbox);
    EXPECT_TRUE(desktop.surfaces().chooseMenuItem("Pin to Bar"));
    desktop.terminate(mail);
    leave();
    settle();
    ASSERT_EQ(pinIDs().size(), 1U);
    panel().click(content().pinFrames().front().second.centre(), PointerButton::secondary);
    EXPECT_TRUE(desktop.surfaces().chooseMenuItem("Open"));
    settle();
    EXPECT_THAT(desktop.workspace().opened(), ElementsAre("/mail"));
}

// Fault: a window is sent to a full-screen space, which takes none.
TEST_F(BarMenuTest, noWindowIsOfferedAFullScreenSpace)
{
    auto displays = desktop.model().displays;
    displays.front().spaces.push_back({SpaceID{9}, 4});
    desktop.setDisplays(displays);
    settle();
    openMenuOf(inbox);
    EXPECT_FALSE(desktop.surfaces().chooseMenuItem("Full Screen"));
    EXPECT_TRUE(desktop.surfaces().chooseMenuItem("Desktop 2"));
    settle();
    EXPECT_FALSE(chipFrame(inbox));
}

}
