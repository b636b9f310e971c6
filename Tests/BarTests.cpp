#include "Quorvel/Core/BarSize.h"
#include "Tests/Support/BarFixture.h"

namespace quorvel::test {

namespace {

using BarTest = ThreeWindows;

}

// MARK: The road from a window to pixels and back

TEST_F(BarTest, aClickActivatesAndAClickOnTheFocusedMinimises)
{
    clickChip(notes);
    EXPECT_TRUE(chip(notes)->isFocused);
    EXPECT_EQ(desktop.workspace().frontmostApplication(), editor);
    desktop.advance(seconds(0.5));
    EXPECT_TRUE(chip(notes)->isFocused);

    clickChip(notes);
    EXPECT_FALSE(chip(notes)->isFocused) << "dark before the application confirms";
    desktop.advance(seconds(0.5));
    EXPECT_TRUE(chip(notes)->isMinimized);
    EXPECT_FALSE(chip(notes)->isFocused);

    clickChip(notes);
    desktop.advance(seconds(0.5));
    EXPECT_FALSE(chip(notes)->isMinimized);
    EXPECT_TRUE(chip(notes)->isFocused);
}

// Fault: whatever is refreshed between a click and its answer lights the window that had the focus
// once more, or that of the click before.
TEST_F(BarTest, aClickedChipStaysLitUntilTheAnswer)
{
    auto chess = desktop.launch({.name = "Chess", .bundleIdentifier = "chess"});
    auto game = desktop.open(chess, {.title = "Game", .takesFocus = false});
    settle();
    for (auto pid : {editor, chess})
        desktop.application(pid).faults.refusesActivation = true;
    for (auto window : {notes, game}) {
        desktop.window(window).faults.ignoredRequests = {"AXMain", "AXFocused", "AXRaise"};
        clickChip(window);
        desktop.retitle(draft, displayItemID(window));
        desktop.advance(seconds(0.3));
        EXPECT_TRUE(chip(window)->isFocused);
    }
    auto answer = [&](ProcessID pid, WindowID window) {
        desktop.focus(window);
        desktop.activate(pid);
        desktop.advance(seconds(0.1));
    };
    answer(editor, notes);
    EXPECT_TRUE(chip(game)->isFocused) << "the answer to the click before";
    answer(chess, game);
    answer(editor, notes);
    EXPECT_TRUE(chip(notes)->isFocused) << "answered: what comes now is new";
}

// Faults: a release elsewhere is a click; a second button ends the press of the first, or has one
// of its own; a press whose release somebody else got goes on for ever, or makes the next one a
// click on what it began with.
TEST_F(BarTest, onePressAtATimeEndsWithItsOwnButton)
{
    auto there = chipFrame(notes)->centre();
    panel().press(there);
    panel().release(chipFrame(draft)->centre());
    panel().press(there);
    panel().losePointer();
    panel().release(there);
    desktop.advance(seconds(1));
    EXPECT_TRUE(chip(inbox)->isFocused);

    panel().press(there);
    panel().press(there, PointerButton::secondary);
    panel().release(there, PointerButton::secondary);
    desktop.drain();
    EXPECT_FALSE(desktop.surfaces().menu());
    EXPECT_TRUE(chip(inbox)->isFocused);
    panel().release(there);
    desktop.advance(seconds(1));
    EXPECT_TRUE(chip(notes)->isFocused);

    auto chips = chipTexts();
    panel().press(there);
    panel().releaseUnheard(PointerButton::primary);
    panel().movePointer(chipFrame(inbox)->centre());
    panel().release(chipFrame(inbox)->centre());
    desktop.advance(seconds(1));
    EXPECT_EQ(chipTexts(), chips);
    EXPECT_TRUE(chip(notes)->isFocused);

    // Outside the panel it is heard of while a button is down; that is not over the bar.
    panel().press(there);
    panel().movePointer({there.x, -500});
    panel().release({there.x, -500});
    EXPECT_FALSE(panel().canBecomeKey());
}

TEST_F(BarTest, theVeryEdgesOfTheScreenBelongToTheTargets)
{
    double bottom = panel().bounds().maxY() - 0.5;
    panel().click({chipFrame(notes)->centre().x, bottom});
    desktop.advance(seconds(0.5));
    EXPECT_TRUE(chip(notes)->isFocused);

    panel().click({0, bottom});
    EXPECT_TRUE(desktop.surfaces().launcher());
}

// MARK: What is repainted

TEST_F(BarTest, aNewTitleRepaintsItsChipAndNothingElse)
{
    leave();
    panel().forgetPaints();

    desktop.retitle(draft, "Draft, changed");
    desktop.advance(seconds(0.5));

    ASSERT_THAT(panel().paints(), SizeIs(1));
    EXPECT_EQ(panel().paints().front().damage, *chipFrame(draft));
    EXPECT_THAT(panel().paints().front().canvas.texts(), ElementsAre("Draft, changed"));
}

TEST_F(BarTest, aWindowThatComesBackUnderThePointerIsSeenAgain)
{
    auto before = *chipFrame(draft);
    panel().movePointer(before.centre());
    desktop.moveToSpace(draft, SpaceID{2});
    desktop.activateSpace(SpaceID{2});
    desktop.activateSpace(SpaceID{1});
    settle();
    EXPECT_FALSE(chipFrame(draft));

    desktop.moveToSpace(draft, SpaceID{1});
    desktop.activateSpace(SpaceID{2});
    desktop.activateSpace(SpaceID{1});
    settle();
    EXPECT_EQ(chipFrame(draft), before);
    EXPECT_NE(panel().render().text("Draft"), nullptr);
}

TEST_F(BarTest, rightToLeftMirrorsTheBar)
{
    auto appearance = desktop.program().appearance().value();
    appearance.isRightToLeft = true;
    desktop.program().setAppearance(appearance);
    desktop.drain();
    EXPECT_GT(chipFrame(inbox)->x, chipFrame(draft)->x);
    auto drawn = panel().render();
    EXPECT_LT(drawn.text("Inbox")->rect.maxX(), drawn.drawn<DrawnImage>().front().rect.x);
    EXPECT_LE(chipFrame(inbox)->maxX(), panel().bounds().maxX());
    panel().click({panel().bounds().maxX() - 1, 10});
    EXPECT_TRUE(desktop.surfaces().launcher());
}

// MARK: The pending focus

TEST_F(BarTest, aHungApplicationsChipIsDarkAgainAfterTheOneRetry)
{
    desktop.activate(editor);
    desktop.drain();
    desktop.application(mail).faults.isHung = true;
    clickChip(draft);
    EXPECT_TRUE(chip(draft)->isFocused);

    desktop.application(mail).faults.isHung = false;
    desktop.window(draft).faults.isListed = false;
    desktop.advance(seconds(0.16));
    EXPECT_FALSE(chip(draft)->isFocused);
}

TEST_F(BarTest, aHungApplicationWithManyWindowsLeavesTheBarAliveForTheOthers)
{
    for (int i = 0; i < 50; ++i)
        desktop.open(mail, {.takesFocus = false});
    settle();
    desktop.application(mail).faults.isHung = true;
    panel().forgetPaints();
    desktop.accessibility().forgetMessages();

    desktop.wake();
    desktop.activateSpace(SpaceID{2});
    desktop.activateSpace(SpaceID{1});
    desktop.retitle(notes, "Changed");
    auto before = desktop.dispatch().now();
    desktop.drain();
    auto onMain = std::ranges::count_if(desktop.accessibility().messages(),
        [&](auto& message) { return message.pid == mail && message.thread == "main"; });
    EXPECT_EQ(onMain, 4) << "two looks for the wake, one for each change of space";
    EXPECT_LE(desktop.dispatch().now() - before, seconds(0.35)) << "with the observers' three";
    desktop.advance(seconds(0.3));

    EXPECT_EQ(chip(notes)->windowTitle, "Changed");
    EXPECT_THAT(panel().paints(), Not(IsEmpty()));
}

// Fault: an application that hangs in the middle is waited for with each thing that is asked of it.
TEST_F(BarTest, anApplicationThatHangsAfterItsFirstAnswerCostsOneRequestAndOneQuestion)
{
    auto cost = [this](const std::function<void()>& ask) {
        desktop.application(mail).faults.messagesUntilHang = 1;
        auto before = desktop.dispatch().now();
        ask();
        auto spent = desktop.dispatch().now() - before;
        desktop.application(mail).faults = {};
        settle();
        return spent;
    };
    using enum BarViewModel::FocusBeforeActivation;
    EXPECT_EQ(cost([&] { model().activateWindow(draft, no); }), seconds(0.05));
    EXPECT_EQ(cost([&] { model().activateWindow(draft, yes); }), seconds(0.1));
    EXPECT_EQ(cost([&] { model().focusWindowWithAXOnly(draft, "test"); }), seconds(0.05));
    EXPECT_EQ(cost([&] { model().minimizeWindows({inbox, draft}); }), seconds(0.05));
}

TEST_F(BarTest, aSecondClickEndsTheRetryOfTheFirst)
{
    desktop.window(notes).faults.isListed = false;
    clickChip(notes);
    clickChip(draft);
    desktop.window(notes).faults.isListed = true;
    desktop.advance(seconds(1));

    EXPECT_TRUE(chip(draft)->isFocused);
    EXPECT_EQ(desktop.workspace().frontmostApplication(), mail);
}

// MARK: Spaces and screens

// Fault: a choice of displays wakes up the machine sixty times a second.
TEST_F(BarTest, whereThePointerIsIsAskedOnlyWhenSomethingOpensThere)
{
    auto one = desktop.model().displays;
    auto three = one;
    for (std::uint32_t number : {2U, 3U})
        three.push_back({.number = DisplayNumber{number},
            .identifier = std::to_string(number),
            .frame = {1440.0 * (number - 1), 0, 1440, 900}});
    auto timersWith = [&](const std::vector<FakeDisplay>& displays) {
        desktop.setDisplays(displays);
        desktop.advance(seconds(1));
        return desktop.dispatch().pendingTimers();
    };
    desktop.model().pointer = {2000, 100};
    EXPECT_EQ(timersWith(three), 0U);
    EXPECT_EQ(manager().preferredMouseScreenIndex(), 1U);
    desktop.model().pointer = {3000, 100};
    EXPECT_EQ(manager().preferredMouseScreenIndex(), 2U) << "where it is now";
    desktop.advance(seconds(1));
    EXPECT_EQ(desktop.dispatch().pendingTimers(), 0U) << "asked once";
    EXPECT_EQ(timersWith(one), 0U);
    EXPECT_EQ(manager().preferredMouseScreenIndex(), 0U) << "the other is gone";
}

}
