#include "Quorvel/Quorvel.h"

#include "Quorvel/Skylight/AXObserverManager.h"
#include "Tests/Support/BarFixture.h"

namespace quorvel::test {

namespace {

struct QuorvelAppTest : BarFixture {
    ProcessID mail = desktop.launch({.name = "Mail", .bundleIdentifier = "com.example.mail"});
    WindowID inbox = desktop.open(mail, {.title = "Inbox"});

    void launchOnly()
    {
        desktop.drain();
        runtime = std::make_unique<Runtime>(desktop.platform());
        QuorvelApp::launch(*runtime);
    }
    WindowStore& store() { return QuorvelApp::windowStore(); }
    bool isRunning() { return runtime->barManager() != nullptr; }
};

}

// MARK: Permissions

TEST_F(QuorvelAppTest, withBothPermissionsTheBarHasItsWindowsBeforeAnyTimePasses)
{
    launchOnly();

    EXPECT_TRUE(isRunning());
    EXPECT_EQ(desktop.accessibility().prompts(), 0);
    EXPECT_EQ(desktop.screenCapture().requests(), 0);
    EXPECT_EQ(desktop.surfaces().window(), nullptr);
    EXPECT_THAT(chipTexts(), ElementsAre("Inbox"));
    for (auto policy : desktop.program().policies())
        EXPECT_EQ(policy, ActivationPolicy::accessory);
    EXPECT_THAT(desktop.program().policies(), Not(IsEmpty()));
}

// MARK: Applications come and go

TEST_F(QuorvelAppTest, aLaunchedApplicationIsObservedScannedAndPolled)
{
    launchOnly();
    settle();
    desktop.windowServer().forgetListings();
    auto start = desktop.dispatch().now();
    auto news = desktop.launch({.bundleIdentifier = "com.example.news"});
    desktop.application(news).faults.failingObservers = 1000;
    desktop.advance(seconds(5));

    EXPECT_THAT(desktop.accessibility().observerAttempts(), Not(IsEmpty()));
    EXPECT_THAT(
        desktop.windowServer().listingsSince(start), ElementsAre(0.3, 0.8, 2.0, 2.6, 3.815));

    auto agent = desktop.launch(
        {.bundleIdentifier = "com.example.agent", .policy = ActivationPolicy::accessory});
    desktop.drain();
    EXPECT_EQ(desktop.accessibility().observersOf(agent), 0u);
    EXPECT_TRUE(store().needsObserverBootstrap(agent));
}

// Faults: a window that a look has found is shown for ever as it was then; one that its application
// lists some time after it is observed, or after the user has gone to its space.
TEST_F(QuorvelAppTest, windowsThatNobodyAnnouncesAreListenedToAllTheSame)
{
    auto isHeard = [this](WindowID id) {
        return desktop.accessibility().isRegistered(id, ax::titleChanged);
    };
    auto late = desktop.open(mail);
    auto elsewhere = desktop.open(mail, {.spaces = {SpaceID{2}}});
    for (auto id : {late, elsewhere})
        desktop.window(id).faults.isListed = false;
    auto& faults = desktop.application(mail).faults;
    faults.swallowedNotifications.insert("AXWindowCreated");
    faults.missingAttributes = {"AXWindows"}; // so all are shown
    launchOnly();
    faults.missingAttributes = {};
    desktop.advance(seconds(0.5));
    desktop.window(late).faults.isListed = true;
    EXPECT_FALSE(isHeard(late));
    desktop.advance(seconds(0.3));
    EXPECT_TRUE(isHeard(late));

    settle();
    auto found = desktop.open(mail);
    store().scheduleDeferredScan(mail);
    desktop.advance(seconds(0.3));
    EXPECT_TRUE(isHeard(found));

    ASSERT_TRUE(store().window(elsewhere));
    desktop.activateSpace(SpaceID{2});
    desktop.advance(seconds(0.5));
    desktop.window(elsewhere).faults.isListed = true;
    EXPECT_FALSE(isHeard(elsewhere));
    desktop.advance(seconds(0.3));
    EXPECT_TRUE(isHeard(elsewhere));
}

// MARK: Activation

TEST_F(QuorvelAppTest, activatingPartsOfTheSystemNeverStartsTracking)
{
    std::vector<ProcessID> system;
    for (auto bundle : QuorvelApp::excludedBootstrapBundleIDs)
        system.push_back(desktop.launch({.bundleIdentifier = std::string{bundle}}));
    system.push_back(desktop.launch(
        {.bundleIdentifier = "com.example.agent", .policy = ActivationPolicy::accessory}));
    launchOnly();
    settle();
    auto attempts = desktop.accessibility().observerAttempts().size();

    for (auto pid : system) {
        desktop.activate(pid);
        settle();
        EXPECT_TRUE(store().needsObserverBootstrap(pid));
    }

    EXPECT_EQ(desktop.accessibility().observerAttempts().size(), attempts);
}

TEST_F(QuorvelAppTest, anUnknownApplicationIsBootstrappedAtMostOnceIn1500Milliseconds)
{
    auto news = desktop.launch({.bundleIdentifier = "com.example.news"});
    desktop.application(news).faults.isDead = true;
    launchOnly();
    settle();
    store().removeWindows(news); // as if it had not been there at the start
    desktop.windowServer().forgetListings();
    auto start = desktop.dispatch().now();
    auto activateAndForget = [&](Duration wait) {
        desktop.activate(mail);
        desktop.activate(news);
        desktop.drain();
        desktop.advance(seconds(0.9));
        store().removeWindows(news); // still unknown to the store
        desktop.advance(wait - seconds(0.9));
    };

    activateAndForget(seconds(1));
    activateAndForget(seconds(1));
    activateAndForget(seconds(1));

    EXPECT_THAT(desktop.windowServer().listingsSince(start), ElementsAre(0.3, 0.8, 2.3, 2.8));
}

// Faults: who is in front goes unknown because the application could not say at that moment; an
// application that a look is in progress for is activated, and nobody listens to it after that.
TEST_F(QuorvelAppTest, anActivatedApplicationIsSoughtUntilItsWindowIsKnown)
{
    auto news = desktop.launch({.bundleIdentifier = "com.example.news"});
    auto feed = desktop.open(news, {.title = "Feed"});
    auto late = desktop.launch(
        {.bundleIdentifier = "com.example.late", .policy = ActivationPolicy::accessory});
    auto page = desktop.open(late, {.title = "Page"});
    desktop.activate(mail);
    launchOnly();
    settle();
    desktop.application(news).faults.wrongAttributes = {{"AXFocusedWindow", 3.0}};
    desktop.activate(news);
    desktop.drain();
    desktop.application(news).faults = {};
    EXPECT_EQ(store().focusedWindowID(), inbox);
    desktop.advance(seconds(0.4));
    EXPECT_EQ(store().focusedWindowID(), feed);

    desktop.application(late).info.activationPolicy = ActivationPolicy::regular;
    desktop.window(page).faults.isListed = false;
    desktop.wake();
    desktop.advance(seconds(0.1));
    desktop.activate(late);
    desktop.drain();
    EXPECT_EQ(desktop.accessibility().observersOf(late), 1U);
}

// MARK: Wake, spaces, screens

TEST_F(QuorvelAppTest, wakingCatchesUpWithWhatWasMissed)
{
    auto second = desktop.open(mail, {.title = "Second"});
    launchOnly();
    settle();
    for (auto name : {ax::windowCreated, ax::windowMiniaturized, ax::focusedWindowChanged})
        desktop.application(mail).faults.swallowedNotifications.insert(std::string{name});
    desktop.minimise(inbox);
    desktop.moveToSpace(second, SpaceID{2});
    auto fresh = desktop.open(mail, {.title = "Fresh"});
    settle();
    EXPECT_FALSE(store().window(inbox)->isMinimized);

    desktop.activateSpace(SpaceID{3});
    desktop.drain();
    EXPECT_TRUE(store().window(fresh));
    EXPECT_EQ(store().window(second)->spaceIDs, std::set{SpaceID{2}});
    EXPECT_TRUE(desktop.accessibility().isRegistered(fresh, ax::titleChanged));
    EXPECT_FALSE(store().window(inbox)->isMinimized) << "only waking reads this again";
    desktop.wake();
    desktop.drain();

    EXPECT_TRUE(store().window(inbox)->isMinimized);
    EXPECT_EQ(store().window(inbox)->spaceIDs, std::set{SpaceID{1}});
}

// Faults: an application that starts out without a window here is not heard of until it is left and
// entered again, or at all while it stays in the background.
TEST_F(QuorvelAppTest, anApplicationWithoutAWindowAtStartIsNotMissed)
{
    auto news = desktop.launch({.bundleIdentifier = "com.example.news"});
    auto afar = desktop.launch({.bundleIdentifier = "com.example.afar"});
    auto shy = desktop.launch({.bundleIdentifier = "com.example.shy"});
    auto map = desktop.open(afar, {.title = "Map", .spaces = {SpaceID{2}}});
    auto late = desktop.open(shy, {.title = "Late", .spaces = {SpaceID{2}}});
    for (auto id : {map, late})
        desktop.window(id).faults.isListed = false; // as from another space
    desktop.activate(news);
    launchOnly();
    desktop.drain();
    EXPECT_EQ(desktop.accessibility().observersOf(news), 1u);
    desktop.open(news, {.title = "Feed"});
    desktop.open(afar, {.title = "Near"});
    desktop.drain();
    EXPECT_THAT(chipTexts(), ElementsAre("Inbox", "Feed", "Near"));
    desktop.advance(seconds(20));

    desktop.window(map).faults.isListed = true;
    desktop.activateSpace(SpaceID{2});
    desktop.drain();
    EXPECT_THAT(chipTexts(SpaceID{2}), ElementsAre("Map"));
    desktop.window(late).faults.isListed = true;
    desktop.advance(seconds(0.4));
    EXPECT_THAT(chipTexts(SpaceID{2}), ElementsAre("Map", "Late"));
}

TEST_F(QuorvelAppTest, aSpaceChangeShowsTheBarOfThatSpaceWithItsWindows)
{
    auto elsewhere = desktop.open(mail, {.title = "Elsewhere", .spaces = {SpaceID{2}}});
    desktop.window(elsewhere).faults.isListed = false; // as from another space
    launchOnly();
    settle();
    auto questionsAt = [this](SpaceID space) {
        auto before = desktop.windowServer().spaceQueries();
        desktop.activateSpace(space);
        desktop.drain();
        return desktop.windowServer().spaceQueries() - before;
    };
    EXPECT_EQ(questionsAt(SpaceID{3}), 1);
    desktop.window(elsewhere).faults.isListed = true;
    EXPECT_EQ(questionsAt(SpaceID{2}), 2) << "once more when the application tells of the window";
    EXPECT_THAT(chipTexts(SpaceID{2}), ElementsAre("Elsewhere"));
}

TEST_F(QuorvelAppTest, hintsOfTheWindowServerAreFollowed)
{
    desktop.setGivesSpaceHints(true);
    launchOnly();
    settle();
    desktop.moveToSpace(inbox, SpaceID{2});
    desktop.drain();
    EXPECT_EQ(store().window(inbox)->spaceIDs, std::set{SpaceID{2}});

    desktop.model().displays.front().spaces.push_back({SpaceID{4}});
    desktop.post([this] { desktop.windowServer().spacesDidChange.emit(); });
    desktop.drain();
    EXPECT_TRUE(desktop.surfaces().panel(SpaceID{4}));
    EXPECT_EQ(model().spaces.value().size(), 4u);
}

// MARK: Requests, the end

TEST_F(QuorvelAppTest, laterInvocationsAreAnswered)
{
    desktop.accessibility().setTrusted(false);
    launchOnly();
    EXPECT_EQ(desktop.control().send({"--state"})->exitStatus, 1);
    desktop.accessibility().setTrusted(true);
    desktop.advance(seconds(1));
    desktop.surfaces().window()->pressKey(KeyCode::enter);
    desktop.advance(seconds(1));

    auto state = desktop.control().send({"--state"});
    ASSERT_TRUE(state);
    EXPECT_EQ(state->exitStatus, 0);
    EXPECT_THAT(state->output, HasSubstr("\"Inbox\""));
    // Fault: the number of something that is in no list.
    desktop.activate(mail);
    desktop.focus(inbox);
    desktop.advance(seconds(1));
    auto focus = [](WindowID id) { return "\"focusedWindow\":" + std::to_string(raw(id)); };
    EXPECT_THAT(desktop.control().send({"--state"})->output, HasSubstr(focus(inbox)));
    desktop.open(mail, {.title = "Question", .subrole = "AXDialog"});
    desktop.advance(seconds(1));
    EXPECT_THAT(desktop.control().send({"--state"})->output, HasSubstr("\"focusedWindow\":null"));
    EXPECT_EQ(desktop.control().send({"--state", "--quit"})->exitStatus, 1);
    EXPECT_EQ(desktop.control().send({})->exitStatus, 1);
    EXPECT_FALSE(desktop.program().isTerminated());

    EXPECT_EQ(desktop.control().send({"--quit"})->exitStatus, 0);
    desktop.drain();
    EXPECT_TRUE(desktop.program().isTerminated());
    EXPECT_THAT(desktop.windowServer().dockRectangles(), IsEmpty());
}

TEST_F(QuorvelAppTest, aRuntimeCanGoAtAnyMomentAndAnotherTakesItsPlace)
{
    auto news = desktop.launch({.bundleIdentifier = "com.example.news"});
    desktop.application(news).faults.failingObservers = 2;
    for (double moment : {0.0, 0.1, 0.3, 0.6, 0.9, 1.4, 2.5}) {
        auto window = desktop.open(news);
        launchOnly();
        desktop.retitle(inbox, std::to_string(moment));
        desktop.post([&] { desktop.retitle(window, "posted"); });
        desktop.advance(seconds(moment));
        runtime.reset();

        EXPECT_EQ(desktop.dispatch().pendingTimers(), 0u) << moment;
        EXPECT_EQ(desktop.accessibility().observersOf(mail), 0u);
        EXPECT_THAT(desktop.surfaces().panels(), IsEmpty());
        EXPECT_THAT(desktop.windowServer().dockRectangles(), IsEmpty());
        desktop.advance(seconds(5));
    }
}

}
