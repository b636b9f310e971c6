#include "Quorvel/Core/BarHiding.h"

#include "Quorvel/Views/BarNote.h"
#include "Quorvel/Views/BarSlide.h"
#include "Tests/Support/BarFixture.h"

namespace quorvel::test {

namespace {

/// Bars that hide, on a desktop with a window that needs no room yet.
struct BarHidingTest : BarFixture {
    static constexpr Rect kClear{100, 100, 400, 300};
    static constexpr Rect kUnderBar{0, 0, 1440, 900};
    static constexpr Point kAtEdge{700, 0.5};
    static constexpr Point kOnBar{700, 10};

    ProcessID mail = desktop.launch({.name = "Mail", .bundleIdentifier = "mail"});
    WindowID inbox = desktop.open(mail, {.title = "Inbox", .frame = kClear});

    BarHidingTest()
    {
        desktop.activate(mail);
        desktop.launchServices().setAvailable(true);
        start();
        runtime->userSettings().setHidesBar(true);
        settle();
    }

    bool isOut(SpaceID space = SpaceID{1}) { return panel(space).slide() == 1; }
    bool isIn(SpaceID space = SpaceID{1}) { return panel(space).slide() == 0; }
    /// Longer than the way, and than what comes before it.
    void wait() { desktop.advance(seconds(2)); }
    void cover()
    {
        desktop.place(inbox, kUnderBar);
        wait();
        ASSERT_TRUE(isOut());
    }
    FakePanel* edge() { return desktop.surfaces().edge(); }
    std::string toggle() { return desktop.control().send({"--toggle-bar"})->error; }
    void ask(std::vector<AttentionRequest> requests)
    {
        desktop.launchServices().requests = std::move(requests);
        desktop.launchServices().answersMayHaveChanged.emit();
        desktop.advance(seconds(1));
    }
    /// To the right of the first, with a bar for the windows there.
    void addSecondDisplay()
    {
        desktop.addDisplay({.number = DisplayNumber{2},
            .identifier = "SECOND",
            .frame = {1440, -200, 1000, 1200},
            .spaces = {{SpaceID{11}}},
            .current = SpaceID{11}});
        settle();
    }
};

}

// Faults: a bar that hides though nobody asked, or stays in the way; one that keeps a strip of the
// screen, or shortens the windows that it makes room for; one that stays out when all that is over.
TEST_F(BarHidingTest, leavesItsRoomToWindowsAndTakesItAgain)
{
    EXPECT_TRUE(isIn());
    EXPECT_TRUE(server().dockRectangles().empty());
    cover();
    EXPECT_EQ(desktop.window(inbox).frame, kUnderBar);
    EXPECT_EQ(panel().frame().height, 36) << "the place stays what it is";
    EXPECT_TRUE(isIn(SpaceID{2})) << "nothing is in its way there";

    desktop.minimise(inbox);
    wait();
    EXPECT_TRUE(isIn());
    desktop.restore(inbox);
    wait();
    EXPECT_TRUE(isOut());
    desktop.setHidden(mail, true);
    wait();
    EXPECT_TRUE(isIn());
    desktop.setHidden(mail, false);
    wait();
    EXPECT_TRUE(isOut());
    desktop.moveToSpace(inbox, SpaceID{2});
    desktop.activateSpace(SpaceID{2});
    wait();
    EXPECT_TRUE(isOut(SpaceID{2}));
    EXPECT_TRUE(isIn(SpaceID{1}));

    runtime->userSettings().setHidesBar(false);
    EXPECT_FALSE(server().dockRectangles().empty());
    wait();
    EXPECT_TRUE(isIn(SpaceID{2}));
    EXPECT_FALSE(edge());
    EXPECT_LT(desktop.window(inbox).frame.maxY(), 900 - 36);
    EXPECT_EQ(toggle(), "quorvel: the bar does not hide; see --set autoHide=true\n");
}

// Faults: windows that have all gone, or a wish from before, keep the bar away; it stays when they
// are back.
TEST_F(BarHidingTest, comesToTheShownDesktop)
{
    auto comesAndGoes = [this] {
        server().toggleShowingDesktop();
        wait();
        auto came = isIn();
        server().toggleShowingDesktop();
        wait();
        return came && isOut();
    };
    toggle();
    EXPECT_TRUE(comesAndGoes());
    toggle();
    cover();
    EXPECT_TRUE(comesAndGoes());
}

// Faults: a bar that jumps instead of sliding, or slides for who wants no motion; one that turns
// round with a leap; frames that are drawn while nothing moves.
TEST_F(BarHidingTest, slidesAndTurnsRoundWhereItIs)
{
    auto timers = desktop.dispatch().pendingTimers();
    toggle();
    desktop.advance(BarSlide::kLength / 2);
    auto half = panel().slide();
    EXPECT_NEAR(half, 0.5, 0.15);
    toggle();
    EXPECT_NEAR(panel().slide(), half, 0.05);
    wait();
    EXPECT_TRUE(isIn());
    toggle();
    wait();
    EXPECT_TRUE(isOut());
    EXPECT_EQ(desktop.dispatch().pendingTimers(), timers);

    auto appearance = desktop.program().appearance().value();
    appearance.reduceMotion = true;
    desktop.program().setAppearance(appearance);
    toggle();
    EXPECT_TRUE(isIn());
}

// Faults: an edge that nobody watches, or that is watched for nothing and swallows presses; a bar
// that does not wait for the hand, or for the files in it.
TEST_F(BarHidingTest, comesToThePointerThatRestsAtTheEdge)
{
    EXPECT_FALSE(edge());
    cover();
    ASSERT_TRUE(edge());
    EXPECT_EQ(edge()->frame(), (Rect{0, 0, 1440, 1}));
    edge()->movePointer(kAtEdge);
    desktop.advance(AutoHide::kRestsFor / 2);
    edge()->leave();
    wait();
    EXPECT_TRUE(isOut());

    edge()->movePointer(kAtEdge);
    desktop.advance(AutoHide::kRestsFor + BarSlide::kLength + seconds(0.05));
    EXPECT_TRUE(isIn());
    EXPECT_FALSE(edge());
    panel().movePointer(kOnBar);
    wait();
    EXPECT_TRUE(isIn());
    panel().leave();
    wait();
    EXPECT_TRUE(isOut());

    EXPECT_FALSE(edge()->dragFiles(DropAction::entered, kAtEdge)) << "the edge takes none";
    desktop.advance(AutoHide::kRestsFor);
    panel().dragFiles(DropAction::entered, kOnBar);
    wait();
    EXPECT_TRUE(isIn());
    panel().dragFiles(DropAction::exited, kOnBar);
    wait();
    EXPECT_TRUE(isOut());

    desktop.activateSpace(SpaceID{2});
    desktop.drain();
    EXPECT_FALSE(edge()) << "the bar that would be called is not seen";
    desktop.activateSpace(SpaceID{1});
    wait();
    EXPECT_TRUE(edge());
    desktop.program().terminate();
    EXPECT_FALSE(edge());
}

// Faults: a bar that goes while its menu, its popup, the launcher, a dragged chip or the keyboard
// needs it, or never goes again afterwards; a walk or a launcher whose bar is not to be seen.
TEST_F(BarHidingTest, staysWhileItIsUsed)
{
    cover();
    auto goesAfter = [this](auto end) {
        wait();
        auto stayed = isIn();
        end();
        wait();
        return stayed && isOut();
    };
    auto& control = desktop.control();
    EXPECT_EQ(control.send({"--focus"})->exitStatus, 0);
    EXPECT_TRUE(goesAfter([this] { panel().pressKey(KeyCode::escape); }));
    control.send({"--launcher"});
    EXPECT_TRUE(goesAfter([&] { control.send({"--launcher"}); }));

    control.send({"--focus"});
    panel().pressKey(KeyCode::menu);
    ASSERT_TRUE(desktop.surfaces().menu());
    EXPECT_TRUE(goesAfter([this] {
        desktop.surfaces().closeMenu();
        desktop.drain();
        panel().pressKey(KeyCode::escape);
    }));

    ASSERT_TRUE(edge());
    edge()->press(kAtEdge);
    desktop.drain();
    auto chip = chipFrame(inbox)->centre();
    panel().press(chip);
    panel().movePointer({chip.x, -200});
    EXPECT_TRUE(goesAfter([&] {
        panel().release({chip.x, -200});
        leave();
    }));

    edge()->press(kAtEdge);
    desktop.drain();
    panel().movePointer(chip);
    desktop.advance(seconds(1));
    ASSERT_TRUE(desktop.surfaces().popup());
    panel().leave();
    desktop.surfaces().popup()->movePointer({10, 10});
    EXPECT_TRUE(goesAfter([this] { desktop.surfaces().popup()->leave(); }));

    desktop.workspace().failToLaunch("Maps");
    EXPECT_TRUE(goesAfter([this] { desktop.advance(BarNote::kTimeToRead); })) << "who reads that?";
}

// Faults: a request that nobody sees, for ever the same bar that comes, or all of them; one that
// keeps the bar after its answer.
TEST_F(BarHidingTest, comesForAWindowOfItsDisplayThatAsksForAttention)
{
    addSecondDisplay();
    auto there = desktop.open(
        mail, {.title = "There", .frame = {1440, -300, 1000, 1400}, .spaces = {SpaceID{11}}});
    auto elsewhere
        = desktop.open(mail, {.title = "Elsewhere", .frame = kClear, .spaces = {SpaceID{2}}});
    desktop.focus(inbox); // what has the focus does not ask
    settle();
    cover();
    ASSERT_TRUE(isOut(SpaceID{11}));

    ask({{there, "mail"}});
    EXPECT_TRUE(isOut());
    EXPECT_TRUE(isIn(SpaceID{11}));
    desktop.advance(AutoHide::kStaysForAttention + seconds(1));
    EXPECT_TRUE(isOut(SpaceID{11}));

    ask({{there, "mail"}, {elsewhere, "mail"}});
    EXPECT_TRUE(isIn()) << "its cell shows where";
    EXPECT_TRUE(isOut(SpaceID{11})) << "that request is no news";
    ask({});
    EXPECT_TRUE(isOut());
}

// Faults: an edge inside the desktop that nobody can hit, or one that another display's windows
// lose more of than need be; a bar whose display has gone.
TEST_F(BarHidingTest, followsItsDisplay)
{
    addSecondDisplay();
    auto below = desktop.model().displays[0];
    cover();
    EXPECT_EQ(edge()->frame().height, BarHiding::kStrip);
    below.number = DisplayNumber{3};
    below.identifier = "BELOW";
    below.spaces = {{SpaceID{21}}};
    below.current = SpaceID{21};
    desktop.addDisplay(below.at({0, -900}));
    settle();
    EXPECT_EQ(edge()->frame(), (Rect{0, 0, 1440, BarHiding::kStripAboveDisplay}));

    auto displays = desktop.model().displays;
    displays.erase(displays.begin());
    desktop.setDisplays(displays);
    settle();
    EXPECT_FALSE(desktop.surfaces().panel(SpaceID{1}));
    EXPECT_FALSE(edge());
    EXPECT_TRUE(isIn(SpaceID{21}));
}

}
