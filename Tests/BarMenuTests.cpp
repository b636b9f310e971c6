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

// Faults: an entry that sets another field, the wrong value, or nothing the second time.
TEST_F(BarMenuTest, eachSettingIsSetAndSetBack)
{
    auto& settings = runtime->userSettings();
    struct {
        const char* entry;
        std::function<bool()> isSet;
        const char* back; ///< null: the same entry
    } entries[] = {
        {"Extra Large", [&] { return settings.barSize() == BarSize::xl; }, "Medium"},
        {"Aero", [&] { return settings.theme() == BarTheme::aero; }, "Frosted"},
        {"Longhorn", [&] { return settings.theme() == BarTheme::longhorn; }, "Frosted"},
        {"Right", [&] { return settings.scrollUpSpaceSwitch() == SpaceScrollUpBehavior::right; },
            "Left"},
        {"Group Windows by Application", [&] { return settings.groupWindowsByApp(); }, nullptr},
        {"Show Titles", [&] { return settings.showChipTitles(); }, nullptr},
        {"Show Window Names", [&] { return settings.showWindowNamesInChips(); }, nullptr},
        {"Show on All Displays", [&] { return settings.showOnAllDisplays(); }, nullptr},
        {"Start at Login", [&] { return settings.runAtLogin(); }, nullptr},
    };
    for (auto& [entry, isSet, back] : entries) {
        auto before = settings.data().value();
        bool wasSet = isSet();
        for (auto* chosen : {entry, back ? back : entry}) {
            openBarMenu();
            EXPECT_TRUE(desktop.surfaces().chooseMenuItem(chosen)) << chosen;
            settle();
            EXPECT_NE(std::exchange(wasSet, isSet()), isSet()) << chosen;
        }
        EXPECT_EQ(settings.data().value(), before) << entry;
    }
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
