// When the window store looks again: the burst of deferred scans and the life cycle of a process.
#include "Tests/Support/StoreFixture.h"

namespace quorvel::test {

namespace {

struct WindowStoreSchedule : StoreFixture {
    ProcessID mail = desktop.launch({.name = "Mail", .bundleIdentifier = "com.example.mail"});
    WindowID inbox = desktop.open(mail);
    Instant start = desktop.dispatch().now();

    WindowStoreSchedule()
    {
        store.populate();
        desktop.windowServer().forgetListings();
        changes = 0;
    }
    std::vector<double> scans() { return desktop.windowServer().listingsSince(start); }
};

}

// MARK: The burst

// Fault: each of the processes that are due in one turn has all windows listed for itself.
TEST_F(WindowStoreSchedule, aBurstScansThreeTimesAndRequestsDuringItStartNothingNew)
{
    auto news = desktop.launch({.bundleIdentifier = "com.example.news"});
    auto feed = desktop.open(news);
    store.scheduleDeferredScan(mail);
    store.scheduleDeferredScan(news);
    desktop.advance(seconds(0.5));
    EXPECT_TRUE(isTracked(feed));
    store.scheduleDeferredScan(mail);
    desktop.advance(seconds(1.4));
    store.scheduleDeferredScan(mail);
    desktop.advance(seconds(20));

    EXPECT_THAT(scans(), ElementsAre(0.3, 0.8, 2.0));
    EXPECT_EQ(desktop.dispatch().pendingTimers(), 0u);
}

TEST_F(WindowStoreSchedule, aRequestAfterTheLastScanStartsANewBurstWhenThisOneEnds)
{
    store.scheduleDeferredScan(mail);
    desktop.advance(seconds(2.2));
    store.scheduleDeferredScan(mail);
    store.scheduleDeferredScan(mail);
    desktop.advance(seconds(20));

    EXPECT_THAT(scans(), ElementsAre(0.3, 0.8, 2.0, 2.8, 3.3, 4.5));
}

// Fault: a window that the application lists late, and the window server later still, is met by the
// last scan for the first time and never looked at again.
TEST_F(WindowStoreSchedule, whatTheLastScanMeetsFirstIsSoughtByAnotherBurst)
{
    store.scheduleDeferredScan(mail);
    desktop.advance(seconds(1));
    auto late = desktop.open(mail);
    desktop.window(late).faults.isListed = false;
    desktop.advance(seconds(1.2));
    desktop.window(late).faults.isListed = true;
    desktop.advance(seconds(20));

    EXPECT_TRUE(isTracked(late));
    EXPECT_THAT(scans(), ElementsAre(0.3, 0.8, 2.0, 2.8, 3.3, 4.5));
}

// Faults: a request after a change of space is taken for one that the last scan serves, which comes
// too early; an application whose windows are all there is not asked for when the list could not be
// had.
TEST_F(WindowStoreSchedule, aChangeOfSpaceHasABurstOfItsOwn)
{
    auto late = desktop.open(mail);
    desktop.window(late).faults.isListed = false;
    store.scheduleDeferredScan(mail);
    desktop.advance(seconds(1.95));
    store.discoverNewWindowsForTrackedPIDs();
    desktop.advance(seconds(0.15));
    desktop.window(late).faults.isListed = true;
    desktop.advance(seconds(20));
    EXPECT_TRUE(isTracked(late));

    auto feed = desktop.open(desktop.launch({.bundleIdentifier = "com.example.news"}));
    desktop.windowServer().failWindowLists(true);
    store.discoverNewWindowsForTrackedPIDs();
    desktop.windowServer().failWindowLists(false);
    desktop.advance(seconds(0.5));
    EXPECT_TRUE(isTracked(feed));
}

// Fault: an application with something that comes and goes is looked at without end.
TEST_F(WindowStoreSchedule, whatEachLookMeetsAnewIsSoughtByOneMoreBurst)
{
    store.scheduleDeferredScan(mail);
    for (int i = 0; i < 200; ++i) {
        auto fleeting = desktop.open(mail);
        desktop.window(fleeting).faults.isListed = false;
        desktop.advance(seconds(0.15));
        desktop.close(fleeting);
    }
    EXPECT_THAT(scans(), ElementsAre(0.3, 0.8, 2.0, 2.8, 3.3, 4.5));
}

// Fault: looks that could not be made count as some that found nothing.
TEST_F(WindowStoreSchedule, whatOnlyTheLastOfThreeLooksCouldSeekIsSoughtAgain)
{
    auto late = desktop.open(mail);
    desktop.window(late).faults.isListed = false;
    desktop.windowServer().failWindowLists(true);
    store.scheduleDeferredScan(mail);
    desktop.advance(seconds(1));
    desktop.windowServer().failWindowLists(false);
    desktop.advance(seconds(2));
    desktop.window(late).faults.isListed = true;
    desktop.advance(seconds(2));
    EXPECT_TRUE(isTracked(late));
}

// Faults: what a tick or the last scan could not read is shown as it was for ever; or asked for
// again and again, though it is not to be had.
TEST_F(WindowStoreSchedule, aTitleThatCouldNotBeReadIsReadByAnotherBurst)
{
    store.handleObserverAttached(mail);
    desktop.advance(seconds(20));
    desktop.window(inbox).faults.missingAttributes = {"AXTitle"};
    desktop.retitle(inbox, "Drafts");
    store.startLifecycleMonitoring(mail, seconds(0.2));
    desktop.advance(seconds(1.5));
    EXPECT_EQ(store.window(inbox)->windowTitle, "Window");
    desktop.window(inbox).faults.missingAttributes = {};
    desktop.advance(seconds(2));
    EXPECT_EQ(store.window(inbox)->windowTitle, "Drafts");

    desktop.window(inbox).faults.missingAttributes = {"AXTitle"};
    store.scheduleDeferredScan(mail);
    desktop.advance(seconds(60));
    desktop.windowServer().forgetListings();
    desktop.advance(seconds(60));
    EXPECT_THAT(scans(), IsEmpty());
}

TEST_F(WindowStoreSchedule, aWindowThatIsNeverPublishedDoesNotKeepTheProgramBusy)
{
    auto never = desktop.open(mail);
    desktop.window(never).faults.isListed = false;

    store.addWindowsForPID(mail);
    desktop.advance(seconds(60));

    EXPECT_FALSE(isTracked(never));
    EXPECT_THAT(scans(), ElementsAre(0, 0.3, 0.8, 2.0));
    EXPECT_EQ(desktop.dispatch().pendingTimers(), 0u);

    store.startLifecycleMonitoring(mail, seconds(1));
    desktop.advance(seconds(60));
    auto scansIn10Seconds = [&] {
        desktop.windowServer().forgetListings();
        desktop.advance(seconds(10));
        return scans().size();
    };
    EXPECT_EQ(scansIn10Seconds(), 4u) << "a tick finds nothing that was not sought before";
    auto another = desktop.open(mail);
    desktop.window(another).faults.isListed = false;
    EXPECT_EQ(scansIn10Seconds(), 7u) << "sought once";
    desktop.window(never).faults.isListed = true;
    desktop.advance(seconds(2.5));
    EXPECT_TRUE(isTracked(never));
}

TEST_F(WindowStoreSchedule, whatTheBurstLeavesMissingIsSettledAfterwards)
{
    store.scheduleDeferredScan(mail);
    desktop.advance(seconds(1));
    hide(inbox);

    desktop.advance(seconds(2) - Duration{1});
    EXPECT_TRUE(isTracked(inbox)) << "missed once, at 2.0";
    desktop.advance(Duration{1});

    EXPECT_FALSE(isTracked(inbox));
    desktop.advance(seconds(20));
    EXPECT_THAT(scans(), ElementsAre(0.3, 0.8, 2.0, 3.0));
}

// MARK: Processes that do not answer

TEST_F(WindowStoreSchedule, aProcessThatHungIsReadOnceItAnswersAndLeftAloneThen)
{
    desktop.activate(mail);
    desktop.window(inbox).title = "Inbox (1)"; // right before it hung
    desktop.application(mail).faults.isHung = true;
    store.handleAppActivated(mail);
    desktop.advance(seconds(60));
    auto whileHung = scans();
    desktop.application(mail).faults = {};

    desktop.advance(seconds(10));

    EXPECT_EQ(store.window(inbox)->windowTitle, "Inbox (1)");
    EXPECT_EQ(store.focusedWindowID(), inbox);
    EXPECT_EQ(desktop.dispatch().pendingTimers(), 0u);
    EXPECT_EQ(whileHung.size(), 7u) << "after 2.5 and 5 s, then every 10 s: each costs 0.05 s";
}

TEST_F(WindowStoreSchedule, theFocusOfAnUnobservedProcessIsPolledToo)
{
    auto draft = desktop.open(mail);
    desktop.activate(mail);
    store.startLifecycleMonitoring(mail, seconds(0.9));
    desktop.advance(seconds(1));
    ASSERT_EQ(store.focusedWindowID(), draft);
    desktop.focus(inbox);

    desktop.advance(seconds(2.5));

    EXPECT_EQ(store.focusedWindowID(), inbox);
}

// MARK: The life cycle

TEST_F(WindowStoreSchedule, anObservedProcessIsLeftAloneAfterTwoTicksThatAgree)
{
    store.startLifecycleMonitoring(mail, seconds(2.6));
    store.handleObserverAttached(mail);
    desktop.advance(seconds(30));

    EXPECT_THAT(scans(), ElementsAre(0.2, 1.0));
    EXPECT_EQ(desktop.dispatch().pendingTimers(), 0u);
}

TEST_F(WindowStoreSchedule, aRestlessObservedProcessIsPolledForTwelveSeconds)
{
    store.startLifecycleMonitoring(mail, seconds(2.6));
    store.handleObserverAttached(mail);
    std::vector<WindowID> opened;
    for (int i = 0; i < 100; ++i) {
        opened.push_back(desktop.open(mail));
        desktop.advance(seconds(0.2));
    }

    auto times = scans();
    ASSERT_FALSE(times.empty());
    EXPECT_NEAR(times.back(), 12.2, 1e-6) << "the first tick from 12 s on is the last";
    EXPECT_EQ(times.size(), 16u);
    EXPECT_EQ(desktop.dispatch().pendingTimers(), 0u);
}

TEST_F(WindowStoreSchedule, aWindowMissedByTheLastTickOfAllIsSettledAfterwards)
{
    store.startLifecycleMonitoring(mail, seconds(2.6));
    desktop.advance(seconds(11.9));
    hide(inbox);
    desktop.windowServer().forgetListings();
    store.handleObserverAttached(mail);
    desktop.advance(seconds(30));

    EXPECT_THAT(scans(), ElementsAre(12.1, 12.6));
    EXPECT_FALSE(isTracked(inbox));
    EXPECT_EQ(desktop.dispatch().pendingTimers(), 0u);
}

// Fault: what happened between the first look and the observer is never seen.
TEST_F(WindowStoreSchedule, aProcessIsLookedAtAgainWhenItIsObservedForTheFirstTime)
{
    desktop.window(inbox).title = "Meanwhile";
    store.handleObserverAttached(mail);
    desktop.advance(seconds(3));
    EXPECT_EQ(store.window(inbox)->windowTitle, "Meanwhile");

    desktop.windowServer().forgetListings();
    store.handleObserverAttached(mail);
    desktop.advance(seconds(3));
    EXPECT_THAT(scans(), IsEmpty());
}

TEST_F(WindowStoreSchedule, aTickThatFindsItsProcessGoneRemovesTheWindows)
{
    store.startLifecycleMonitoring(mail, seconds(1));
    desktop.crash(mail);
    desktop.advance(seconds(1));

    EXPECT_FALSE(isTracked(inbox));
    EXPECT_EQ(desktop.dispatch().pendingTimers(), 0u);

    auto other = desktop.launch({.bundleIdentifier = "com.example.other"});
    auto window = desktop.open(other);
    store.addWindowsForPID(other);
    store.startLifecycleMonitoring(other, seconds(1));
    desktop.application(other).info.isTerminated = true;
    desktop.advance(seconds(1));
    EXPECT_FALSE(isTracked(window));
}

TEST_F(WindowStoreSchedule, bootstrapIsNeededOnlyForAProcessWithoutAnyTrace)
{
    auto fresh = desktop.launch({.bundleIdentifier = "com.example.fresh"});
    EXPECT_FALSE(store.needsObserverBootstrap(mail)) << "it has a window";
    EXPECT_TRUE(store.needsObserverBootstrap(fresh));

    store.startLifecycleMonitoring(fresh, seconds(1));
    EXPECT_FALSE(store.needsObserverBootstrap(fresh)) << "it is monitored";
    store.removeWindows(fresh);
    EXPECT_TRUE(store.needsObserverBootstrap(fresh));
    store.scheduleDeferredScan(fresh);
    EXPECT_FALSE(store.needsObserverBootstrap(fresh)) << "a burst is under way";
    desktop.advance(seconds(2.5));
    EXPECT_TRUE(store.needsObserverBootstrap(fresh));
    store.handleObserverAttached(fresh);
    EXPECT_FALSE(store.needsObserverBootstrap(fresh)) << "it is observed";
}

}
