// What accessibility events and activations do to the windows and the focus.
#include "Tests/Support/StoreFixture.h"

namespace quorvel::test {

namespace {

struct WindowStoreEvents : StoreFixture {
    ProcessID mail = desktop.launch({.name = "Mail", .bundleIdentifier = "com.example.mail"});
    ProcessID news = desktop.launch({.name = "News", .bundleIdentifier = "com.example.news"});
    WindowID inbox = desktop.open(mail, {.title = "Inbox"});
    WindowID draft = desktop.open(mail, {.title = "Draft"});
    WindowID feed = desktop.open(news, {.title = "Feed"});

    WindowStoreEvents()
    {
        desktop.activate(mail);
        store.populate();
        changes = 0;
    }
    Duration cost(const std::function<void()>& work)
    {
        auto before = desktop.dispatch().now();
        work();
        return desktop.dispatch().now() - before;
    }
};

}

TEST_F(WindowStoreEvents, aFocusEventWithoutAWindowIsAnsweredByTheApplication)
{
    auto nameless = event(inbox, ax::focusedWindowChanged);
    nameless.windowID.reset();
    desktop.application(mail).focusedWindow = inbox;
    store.handleAXEvent(nameless);
    EXPECT_EQ(store.focusedWindowID(), inbox);

    desktop.application(mail).faults.isHung = true;
    EXPECT_EQ(cost([&] { store.handleAXEvent(nameless); }), seconds(0.05));
    EXPECT_EQ(store.focusedWindowID(), inbox) << "no answer says nothing about the focus";
}

// Fault: an application that is busy while it makes a dialog gets a chip for it, for half an
// answer.
TEST_F(WindowStoreEvents, halfAnAnswerAboutANewWindowMakesNoChip)
{
    for (int answers = 0; answers < 6; ++answers) {
        auto dialog = desktop.open(mail, {.subrole = "AXDialog"});
        desktop.application(mail).faults.messagesUntilHang = answers;
        store.handleAXEvent(event(dialog, ax::windowCreated));
        EXPECT_FALSE(isTracked(dialog)) << answers << " answers";
        desktop.application(mail).faults = {};
        desktop.advance(seconds(20));
        EXPECT_FALSE(isTracked(dialog)) << answers << " answers";
    }
    auto window = desktop.open(mail);
    desktop.application(mail).faults.messagesUntilHang = 2;
    store.handleAXEvent(event(window, ax::windowCreated));
    desktop.application(mail).faults = {};
    desktop.advance(seconds(20));
    EXPECT_TRUE(isTracked(window)) << "looked at again";
}

TEST_F(WindowStoreEvents, anActivationThatCannotBeResolvedLeavesTheFocus)
{
    desktop.activate(news);
    desktop.application(news).faults.isDead = true;
    store.handleAppActivated(news);
    EXPECT_EQ(store.focusedWindowID(), draft);
    desktop.application(news).faults = {.wrongAttributes = {{"AXFocusedWindow", 3.0}}};
    store.handleAppActivated(news);
    EXPECT_EQ(store.focusedWindowID(), draft);

    desktop.application(news).faults = {};
    desktop.window(feed).faults.hasWindowNumber = false;
    store.handleAppActivated(news);
    EXPECT_EQ(store.focusedWindowID(), draft);
    EXPECT_EQ(changes, 0);
}

TEST_F(WindowStoreEvents, minimisingTheFocusedWindowLeavesNoFocusUntilTheNextEvent)
{
    store.handleAXEvent(event(inbox, ax::windowMiniaturized));
    store.handleAXEvent(event(inbox, ax::windowMiniaturized));
    EXPECT_EQ(store.focusedWindowID(), draft) << "another's";
    EXPECT_EQ(changes, 1) << "the same again is no change";
    changes = 0;

    store.handleAXEvent(event(draft, ax::windowMiniaturized));
    EXPECT_TRUE(store.window(draft)->isMinimized);
    EXPECT_EQ(store.focusedWindowID(), std::nullopt);
    EXPECT_EQ(changes, 1) << "both changes are one";

    store.handleAXEvent(event(draft, ax::windowDeminiaturized));
    EXPECT_FALSE(store.window(draft)->isMinimized);
    EXPECT_EQ(store.focusedWindowID(), std::nullopt);
    store.handleAXEvent(event(draft, ax::focusedWindowChanged));
    EXPECT_EQ(store.focusedWindowID(), draft);
}

// Fault: a window that changes its process loses its chip, because the old one lets it go last.
TEST_F(WindowStoreEvents, aWindowThatGoesToAnotherProcessStays)
{
    auto letGo = event(inbox, ax::elementDestroyed);
    desktop.window(inbox).pid = news;

    store.handleAXEvent(event(inbox, ax::windowCreated));
    store.handleAXEvent(letGo);
    desktop.advance(seconds(3));

    ASSERT_TRUE(isTracked(inbox));
    EXPECT_EQ(store.window(inbox)->pid, news);
    store.handleAXEvent(event(inbox, ax::elementDestroyed));
    EXPECT_FALSE(isTracked(inbox));
}

// Fault: a window that no space lists yet waits for a burst, and dragging a dialog never rests.
TEST_F(WindowStoreEvents, aNewWindowIsAskedForItsSpacesAndOnlyGrowthMakesAnOldOneInteresting)
{
    store.handleObserverAttached(mail); // or it would be polled
    auto reply = desktop.open(mail, {.title = "Reply"});
    desktop.window(reply).isInSpaceLists = false;
    store.handleAXEvent(event(reply, ax::windowCreated));
    ASSERT_TRUE(isTracked(reply));
    EXPECT_EQ(store.window(reply)->spaceIDs, std::set{SpaceID{1}});
    desktop.advance(seconds(20));
    store.scheduleDeferredScan(mail);
    desktop.advance(seconds(1));
    auto unannounced = desktop.open(mail);
    desktop.window(unannounced).isInSpaceLists = false;
    desktop.windowServer().failSpacesOfWindows(true);
    desktop.advance(seconds(1.2));
    desktop.windowServer().failSpacesOfWindows(false);
    desktop.advance(seconds(1));
    EXPECT_TRUE(isTracked(unannounced));

    auto tip = desktop.open(news, {.frame = {0, 0, 30, 30}});
    desktop.advance(seconds(20));
    desktop.windowServer().forgetListings();
    desktop.move(tip, {50, 50});
    store.handleAXEvent(event(tip, ax::windowMoved));
    desktop.advance(seconds(3));
    EXPECT_TRUE(desktop.windowServer().listings().empty());
    desktop.resize(tip, {300, 300});
    store.handleAXEvent(event(tip, ax::windowResized));
    desktop.advance(seconds(1));
    EXPECT_TRUE(isTracked(tip));
}

TEST_F(WindowStoreEvents, aMovedWindowHasItsNewFrameAndAnUnreadableOneKeepsItsOld)
{
    desktop.move(inbox, {50, 60});
    store.handleAXEvent(event(inbox, ax::windowMoved));
    desktop.resize(inbox, {640, 480});
    store.handleAXEvent(event(inbox, ax::windowResized));
    EXPECT_EQ(store.window(inbox)->frame, (Rect{50, 60, 640, 480}));
    EXPECT_EQ(changes, 2);
    EXPECT_EQ(desktop.dispatch().pendingTimers(), 0U) << "it stayed on its screen";

    desktop.move(inbox, {0, 0});
    desktop.window(inbox).faults.wrongAttributes["AXSize"] = Point{1, 1};
    store.handleAXEvent(event(inbox, ax::windowMoved));
    EXPECT_EQ(store.window(inbox)->frame, (Rect{50, 60, 640, 480}));
    EXPECT_EQ(changes, 2);

    desktop.window(inbox).faults = {};
    desktop.advance(seconds(0.3));
    EXPECT_EQ(store.window(inbox)->frame, (Rect{0, 0, 640, 480})) << "looked at again";
}

// Faults: the spaces are read while the window is still being dragged, or never; a screen above the
// first, with negative coordinates from the top, is not told from it.
TEST_F(WindowStoreEvents, aWindowThatCrossesToAnotherScreenHasItsSpacesReadAgainOnceItRests)
{
    desktop.addDisplay({.number = DisplayNumber{2},
        .identifier = "B",
        .frame = {0, 900, 1920, 1080},
        .spaces = {{SpaceID{10}}},
        .current = SpaceID{10}});
    desktop.drain();
    auto moveTo = [&](Point origin) {
        desktop.move(inbox, origin);
        store.handleAXEvent(event(inbox, ax::windowMoved));
    };
    moveTo({100, -400});
    desktop.moveToSpace(inbox, SpaceID{10});
    desktop.advance(seconds(0.1));
    moveTo({100, 100}); // each crossing starts the wait anew
    desktop.advance(seconds(0.1));
    moveTo({100, -900});
    desktop.advance(seconds(0.15));
    EXPECT_EQ(store.window(inbox)->spaceIDs, std::set{SpaceID{1}});
    desktop.advance(seconds(0.05));

    EXPECT_EQ(store.window(inbox)->spaceIDs, std::set{SpaceID{10}});
    moveTo({120, -1000});
    EXPECT_EQ(desktop.dispatch().pendingTimers(), 0u) << "within the second";

    desktop.move(inbox, {100, 100});
    scanAfter(mail, seconds(0.1)); // which learns of the place before the window is dropped
    store.handleObserverAttached(mail);
    desktop.advance(seconds(20));
    desktop.moveToSpace(inbox, SpaceID{1});
    store.handleAXEvent(event(inbox, ax::windowMoved));
    desktop.advance(seconds(0.2));
    EXPECT_EQ(store.window(inbox)->spaceIDs, std::set{SpaceID{1}});
}

}
