// Windows that the user sends to another space.
#include "Quorvel/Core/BarManager.h"
#include "Tests/Support/BarFixture.h"

namespace quorvel::test {

namespace {

struct WindowMovesTest : BarFixture {
    ProcessID mail = desktop.launch({.name = "Mail", .bundleIdentifier = "com.example.mail"});
    WindowID inbox = desktop.open(mail, {.title = "Inbox"});

    WindowMovesTest() { desktop.activate(mail); }

    std::set<SpaceID> spacesOf(WindowID id) { return desktop.window(id).spaces; }
    std::vector<Point> whereTheButtonWent()
    {
        std::vector<Point> points;
        for (auto& [post, at] : server().postedPointer()) {
            if (post == PointerPost::pressed || post == PointerPost::released)
                points.push_back(at);
        }
        return points;
    }
};

}

TEST_F(WindowMovesTest, whereTheServerRefusesTheWindowIsCarriedByItsTitleBar)
{
    server().refuseMoves(true);
    server().setDesktopHotKey(119, {.keys = {19, 1}}, SpaceID{2});
    desktop.model().pointer = {7, 9};
    start();
    std::vector<std::string> steps;
    desktop.trace().setSink([&](std::string_view line) {
        for (auto* step : {"AX app focused/main sent", "AX focus/raise sent", "app.activate"}) {
            if (line.starts_with("activateWindow ") && line.find(step) != line.npos)
                steps.emplace_back(step);
        }
    });
    manager().moveWindowToSpaceByDragging(inbox, SpaceID{1}, SpaceID{2});
    desktop.advance(seconds(0.2));
    desktop.trace().setSink({});

    // The window is the application's front one before that comes forward, so that none of its
    // other windows gets under the hand that is about to press.
    ASSERT_GE(steps.size(), 4U);
    steps.resize(4);
    EXPECT_THAT(steps,
        ElementsAre("AX app focused/main sent", "AX focus/raise sent", "app.activate",
            "AX focus/raise sent"));
    EXPECT_EQ(spacesOf(inbox), std::set{SpaceID{2}});
    EXPECT_EQ(current(), SpaceID{2});
    EXPECT_THAT(chipTexts(SpaceID{2}), ElementsAre("Inbox"));
    EXPECT_FALSE(server().isPostedButtonDown());
    EXPECT_EQ(desktop.model().pointer, (Point{7, 9}));

    auto events = whereTheButtonWent().size();
    manager().moveWindowToSpaceByDragging(inbox, SpaceID{2}, SpaceID{3});
    desktop.advance(seconds(3));
    EXPECT_THAT(whereTheButtonWent(), SizeIs(events)) << "no key leads there";
    manager().moveWindowToSpaceByDragging(inbox, SpaceID{1}, SpaceID{2});
    desktop.advance(seconds(3));
    EXPECT_THAT(whereTheButtonWent(), SizeIs(events)) << "it is not there to take hold of";
}

// Fault: each window ends the move of the one before, and only the last one arrives.
TEST_F(WindowMovesTest, theWindowsOfAGroupAreCarriedOneAfterTheOther)
{
    server().refuseMoves(true);
    server().setDesktopHotKey(118, {.keys = {18, 1}}, SpaceID{1});
    server().setDesktopHotKey(119, {.keys = {19, 1}}, SpaceID{2});
    auto draft = desktop.open(mail, {.title = "Draft"});
    start();
    runtime->userSettings().setGroupWindowsByApp(true);
    desktop.drain();
    auto group = content().chipFrames().front().second.centre();
    auto cell = content().spaceCellFrames()[1].second.centre();
    panel().press(group);
    panel().movePointer(cell);
    panel().release(cell);
    desktop.advance(seconds(5));
    EXPECT_EQ(spacesOf(inbox), std::set{SpaceID{2}});
    EXPECT_EQ(spacesOf(draft), std::set{SpaceID{2}});
    EXPECT_FALSE(server().isPostedButtonDown());
}

TEST_F(WindowMovesTest, theButtonIsLetGoWhateverHappens)
{
    server().refuseMoves(true);
    server().setDesktopHotKey(119, {.keys = {19, 1}}, SpaceID{1}); // a key that leads nowhere
    start();
    manager().moveWindowToSpaceByDragging(inbox, SpaceID{1}, SpaceID{2});
    desktop.advance(seconds(0.2));
    EXPECT_TRUE(server().isPostedButtonDown());
    desktop.advance(seconds(1.5));
    EXPECT_FALSE(server().isPostedButtonDown());

    manager().moveWindowToSpaceByDragging(inbox, SpaceID{1}, SpaceID{2});
    desktop.advance(seconds(0.2));
    ASSERT_TRUE(server().isPostedButtonDown());
    desktop.program().terminate();
    EXPECT_FALSE(server().isPostedButtonDown());
}

// Fault: a press on the window that covers the one to be moved.
TEST_F(WindowMovesTest, aWindowThatDoesNotComeToTheFrontIsLeftAlone)
{
    server().refuseMoves(true);
    server().setDesktopHotKey(119, {.keys = {19, 1}}, SpaceID{2});
    desktop.window(inbox).faults.ignoredRequests = {"AXMain", "AXFocused", "AXRaise"};
    desktop.application(mail).faults.refusedRequests = {"AXFocusedWindow", "AXMainWindow"};
    desktop.open(desktop.launch({.name = "Editor"}), {.title = "Above"});
    start();
    manager().moveWindowToSpaceByDragging(inbox, SpaceID{1}, SpaceID{2});
    desktop.advance(seconds(3));
    EXPECT_THAT(whereTheButtonWent(), IsEmpty());
    EXPECT_EQ(current(), SpaceID{1});
}

TEST_F(WindowMovesTest, toAnotherDisplayTheWindowIsDraggedOnceTheSpaceIsShown)
{
    server().refuseMoves(true);
    desktop.addDisplay({.number = DisplayNumber{2},
        .identifier = "SECOND",
        .frame = {1440, -200, 1000, 1200},
        .spaces = {{SpaceID{11}}, {SpaceID{12}}},
        .current = SpaceID{11}});
    start();
    manager().moveWindowToSpaceByDragging(inbox, SpaceID{1}, SpaceID{12});
    desktop.advance(seconds(0.5));

    EXPECT_EQ(current(1), SpaceID{12});
    EXPECT_EQ(spacesOf(inbox), std::set{SpaceID{12}});
    EXPECT_EQ(current(), SpaceID{1});
    EXPECT_FALSE(server().isPostedButtonDown());
    EXPECT_THAT(chipTexts(SpaceID{12}), ElementsAre("Inbox"));
}

}
