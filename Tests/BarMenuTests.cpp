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

// Faults: a state that the system or the window does not offer, or that is offered of another
// window; a mark that says the opposite; an application that hangs and keeps the menu from opening.
TEST_F(BarMenuTest, theStatesOfAWindowAreSwitched)
{
    auto draft = desktop.open(mail, {.title = "Draft"});
    settle();
    auto& switches = desktop.window(inbox).switches;
    switches = {{"QuorvelMaximized", false}, {"AXFullScreen", false}, {"QuorvelKeptAbove", true}};
    openMenuOf(inbox);
    EXPECT_THAT(desktop.surfaces().checkedMenuTitles(), ElementsAre("Keep Above Others"));
    EXPECT_FALSE(desktop.surfaces().chooseMenuItem("On All Desktops"));
    EXPECT_TRUE(desktop.surfaces().chooseMenuItem("Maximise"));
    desktop.drain();
    EXPECT_TRUE(switches.at("QuorvelMaximized"));
    openMenuOf(inbox);
    EXPECT_THAT(
        desktop.surfaces().checkedMenuTitles(), ElementsAre("Maximise", "Keep Above Others"));
    EXPECT_TRUE(desktop.surfaces().chooseMenuItem("Keep Above Others"));
    desktop.drain();
    EXPECT_FALSE(switches.at("QuorvelKeptAbove"));

    openMenuOf(draft);
    EXPECT_THAT(desktop.surfaces().menuTitles(), Not(Contains("Full Screen")));
    desktop.surfaces().closeMenu();
    desktop.window(inbox).faults.refusedRequests = {"AXFullScreen"};
    openMenuOf(inbox);
    EXPECT_THAT(desktop.surfaces().menuTitles(), Not(Contains("Full Screen")));
    desktop.surfaces().closeMenu();
    desktop.application(mail).faults.isHung = true;
    auto before = desktop.dispatch().now();
    openMenuOf(inbox);
    EXPECT_LE(desktop.dispatch().now() - before, seconds(0.06));
    EXPECT_THAT(desktop.surfaces().menuTitles(), Contains("Close"));
}

// Faults: a window of all desktops that cannot be brought back to this one alone, or to another.
TEST_F(BarMenuTest, aWindowIsPutOnAllDesktopsAndTakenOffAgain)
{
    desktop.setGivesSpaceHints(true);
    auto& window = desktop.window(inbox);
    window.switches = {{"QuorvelOnEverySpace", false}};
    openMenuOf(inbox);
    EXPECT_TRUE(desktop.surfaces().chooseMenuItem("On All Desktops"));
    settle();
    EXPECT_EQ(chipTitles(SpaceID{3}), std::vector<std::string>{"Inbox"});

    openMenuOf(inbox);
    EXPECT_TRUE(desktop.surfaces().chooseMenuItem("Only on This Desktop"));
    settle();
    EXPECT_EQ(window.spaces, std::set{SpaceID{1}});
    desktop.setOnEverySpace(inbox, true);
    window.switches = {{"QuorvelOnEverySpace", true}};
    settle();
    openMenuOf(inbox);
    EXPECT_TRUE(desktop.surfaces().chooseMenuItem("Desktop 2"));
    settle();
    EXPECT_EQ(window.spaces, std::set{SpaceID{2}});
}

// Faults: the button enters full screen where the window was to be zoomed; one that does nothing is
// offered.
TEST_F(BarMenuTest, aWindowWithAZoomButtonIsZoomed)
{
    auto& button = desktop.window(inbox).zoomButton.emplace();
    for (auto* subrole : {"AXFullScreenButton", "AXZoomButton"}) {
        button.subrole = subrole;
        openMenuOf(inbox);
        EXPECT_TRUE(desktop.surfaces().chooseMenuItem("Zoom"));
        desktop.drain();
    }
    EXPECT_THAT(button.actions, ElementsAre("AXZoomWindow", "AXPress"));
    button.isEnabled = false;
    openMenuOf(inbox);
    EXPECT_THAT(desktop.surfaces().menuTitles(), Not(Contains("Zoom")));
}

// Faults: what concerns all windows is out of sight below them; a window that no entry leads to.
TEST_F(BarMenuTest, closeAllIsInSightHoweverManyWindowsThereAre)
{
    for (int i = 0; i < 40; ++i)
        desktop.open(mail, {.title = "Letter " + std::to_string(i)});
    settle();
    runtime->userSettings().setGroupWindowsByApp(true);
    settle();
    panel().click(content().chipFrames().front().second.centre(), PointerButton::secondary);
    desktop.drain();
    EXPECT_LE(desktop.surfaces().menuTitles().size(), 20U);
    EXPECT_TRUE(desktop.surfaces().chooseMenuItem("Letter 39"));
    settle();
    EXPECT_EQ(desktop.application(mail).focusedWindow, WindowID{raw(inbox) + 40});
    panel().click(content().chipFrames().front().second.centre(), PointerButton::secondary);
    EXPECT_TRUE(desktop.surfaces().chooseMenuItem("Close All"));
    settle();
    EXPECT_TRUE(desktop.model().windows.empty());
}

}
