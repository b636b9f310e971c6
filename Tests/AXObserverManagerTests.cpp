#include "Quorvel/Skylight/AXObserverManager.h"

#include "Tests/Support/FakeDesktop.h"
#include "Tests/Support/Matchers.h"

namespace quorvel::test {

namespace {

struct AXObserverManagerTest : testing::Test {
    struct Heard {
        std::string notification;
        std::optional<WindowID> window;
        Duration at;
        friend bool operator==(const Heard&, const Heard&) = default;
    };

    FakeDesktop desktop;
    AXObserverManager manager{
        desktop.dispatch(), desktop.accessibility(), desktop.dispatch().main()};
    std::vector<Heard> heard;
    std::vector<ProcessID> attached;
    std::vector<ProcessID> failed;
    ProcessID mail = desktop.launch({.name = "Mail", .bundleIdentifier = "com.example.mail"});
    WindowID inbox = desktop.open(mail);
    WindowID draft = desktop.open(mail);

    AXObserverManagerTest()
    {
        manager.onEvent = [this](const AXWindowEvent& event) {
            EXPECT_TRUE(desktop.dispatch().isOnMain());
            heard.push_back({event.notification, event.windowID, now()});
        };
        manager.onObserverAdded = [this](ProcessID pid) {
            EXPECT_TRUE(desktop.dispatch().isOnMain());
            attached.push_back(pid);
        };
        manager.onObserverFailed = [this](ProcessID pid) { failed.push_back(pid); };
        manager.start();
    }
    Duration now() { return desktop.dispatch().now() - VirtualDispatch::kStart; }
    void attach()
    {
        manager.observe(mail);
        desktop.drain();
    }
    Heard at(double time, std::string_view notification, std::optional<WindowID> window)
    {
        return {std::string{notification}, window, seconds(time)};
    }
    std::vector<Duration> attempts()
    {
        std::vector<Duration> times;
        for (auto time : desktop.accessibility().observerAttempts())
            times.push_back(time - VirtualDispatch::kStart);
        return times;
    }
    bool isFullyRegistered(WindowID id)
    {
        return std::ranges::all_of(AXObserverManager::windowNotifications,
            [&](auto name) { return desktop.accessibility().isRegistered(id, name); });
    }
};

}

TEST_F(AXObserverManagerTest, attachingRegistersTheApplicationAndEachOfItsWindows)
{
    attach();

    EXPECT_THAT(attached, ElementsAre(mail));
    EXPECT_TRUE(desktop.accessibility().isRegistered(mail, ax::windowCreated));
    EXPECT_TRUE(desktop.accessibility().isRegistered(mail, ax::focusedWindowChanged));
    EXPECT_TRUE(isFullyRegistered(inbox));
    EXPECT_TRUE(isFullyRegistered(draft));
    for (auto& message : desktop.accessibility().messages()) {
        EXPECT_EQ(message.thread, "AXObserverManager") << message.name;
        EXPECT_EQ(message.timeout, 0.05F) << message.name;
    }
}

TEST_F(AXObserverManagerTest, aRowOfMovesIsOneEventAQuarterSecondAfterTheLast)
{
    attach();
    for (int i = 1; i <= 10; ++i) {
        desktop.move(inbox, {100.0 + i, 100});
        if (i == 4) {
            desktop.move(draft, {5, 5}); // rows of their own
            desktop.resize(inbox, {300, 300});
        }
        desktop.advance(seconds(0.05));
    }
    desktop.advance(seconds(5));

    EXPECT_THAT(heard,
        ElementsAre(at(0.4, ax::windowMoved, draft), at(0.4, ax::windowResized, inbox),
            at(0.7, ax::windowMoved, inbox)));
}

TEST_F(AXObserverManagerTest, aTitleThatNeverRestsIsStillTold)
{
    attach();
    for (int i = 0; i < 24; ++i) {
        desktop.retitle(inbox, std::to_string(i));
        desktop.move(inbox, {100.0 + i, 1});
        desktop.advance(seconds(0.1));
    }
    desktop.advance(seconds(5));

    // The first title at once, the others after a second at the latest, then a new row; moves only
    // once they have ended.
    EXPECT_THAT(heard,
        ElementsAre(at(0, ax::titleChanged, inbox), at(1.1, ax::titleChanged, inbox),
            at(2.1, ax::titleChanged, inbox), at(2.55, ax::titleChanged, inbox),
            at(2.55, ax::windowMoved, inbox)));
}

TEST_F(AXObserverManagerTest, aWindowThatCannotBeNamedIsToldWithoutANumberAndWithoutDelay)
{
    desktop.window(inbox).faults.hasWindowNumber = false;
    attach();
    EXPECT_FALSE(isFullyRegistered(inbox));
    desktop.focus(inbox);
    desktop.drain();

    EXPECT_THAT(heard, ElementsAre(at(0, ax::focusedWindowChanged, std::nullopt)));
}

// Fault: a window that had no number yet when it was announced is never heard of again.
TEST_F(AXObserverManagerTest, aWindowWhoseNumberComesLateIsListenedToAfterARetry)
{
    attach();
    auto late = desktop.open(mail);
    desktop.window(late).faults.hasWindowNumber = false;
    desktop.advance(seconds(1));
    desktop.window(late).faults.hasWindowNumber = true;
    desktop.advance(seconds(1));

    EXPECT_TRUE(isFullyRegistered(late));
    EXPECT_EQ(heard.back(), at(1.5, ax::windowCreated, late)) << "the second retry names it";
    desktop.window(late).faults.hasWindowNumber = false;
    desktop.open(mail);
    desktop.advance(seconds(60));
    EXPECT_EQ(desktop.dispatch().pendingTimers(), 0u) << "one that never has any is given up";
}

TEST_F(AXObserverManagerTest, aDestroyedWindowIsNamedAndItsPendingEventsDie)
{
    attach();
    for (auto* title : {"Saving", "Closing"})
        desktop.retitle(inbox, title);
    desktop.move(inbox, {1, 1});
    for (auto* title : {"Saving", "Staying"})
        desktop.retitle(draft, title);
    desktop.close(inbox); // its element knows no number any more
    desktop.advance(seconds(1));

    EXPECT_THAT(heard,
        ElementsAre(at(0, ax::titleChanged, inbox), at(0, ax::titleChanged, draft),
            at(0, ax::elementDestroyed, inbox), at(0.25, ax::titleChanged, draft)));
    EXPECT_EQ(desktop.dispatch().pendingTimers(), 0u);
}

TEST_F(AXObserverManagerTest, aProcessThatNeverAnswersIsTriedSixTimesAndThenLeftAlone)
{
    desktop.application(mail).faults.failingObservers = 1000;
    attach();
    desktop.advance(seconds(100));

    EXPECT_THAT(attempts(),
        ElementsAre(
            seconds(0), seconds(0.5), seconds(1.5), seconds(3.5), seconds(7.5), seconds(15.5)));
    EXPECT_THAT(attached, IsEmpty());
    EXPECT_THAT(failed, ElementsAre(mail));
    EXPECT_EQ(desktop.dispatch().pendingTimers(), 0u);

    // A later request starts from the beginning; one more beside it costs it no retry.
    manager.observe(mail);
    manager.refreshWindows({mail});
    desktop.advance(seconds(0.5));
    EXPECT_EQ(attempts().size(), 9u);
    desktop.advance(seconds(100));
    EXPECT_EQ(attempts().size(), 13u);
    EXPECT_THAT(failed, ElementsAre(mail, mail));
}

TEST_F(AXObserverManagerTest, successClearsTheCountOfFailures)
{
    desktop.application(mail).faults.failingObservers = 3;
    attach();
    desktop.advance(seconds(4));
    EXPECT_THAT(attached, ElementsAre(mail));
    manager.stopObserving(mail);
    desktop.drain();
    desktop.application(mail).faults.failingObservers = 1;
    auto before = attempts().size();
    attach();
    desktop.advance(seconds(0.5));

    EXPECT_EQ(attempts().size(), before + 2) << "the first retry comes after half a second again";
    EXPECT_THAT(attached, ElementsAre(mail, mail));
}

TEST_F(AXObserverManagerTest, oneNotificationOfTheApplicationThatFailsFailsTheAttempt)
{
    desktop.application(mail).faults.failingRegistrations.insert("AXFocusedWindowChanged");
    attach();
    EXPECT_THAT(attached, IsEmpty());
    EXPECT_EQ(desktop.accessibility().observersOf(mail), 0u);

    desktop.application(mail).faults.failingRegistrations = {"AXTitleChanged"};
    desktop.advance(seconds(0.5));
    EXPECT_THAT(attached, ElementsAre(mail)) << "one of a window is skipped";
    EXPECT_TRUE(desktop.accessibility().isRegistered(inbox, ax::windowMoved));
}

TEST_F(AXObserverManagerTest, aHungApplicationDelaysNobodyElsesEventsForLong)
{
    auto news = desktop.launch({.bundleIdentifier = "com.example.news"});
    auto feed = desktop.open(news);
    for (int i = 0; i < 50; ++i)
        desktop.open(mail);
    attach();
    manager.observe(news);
    desktop.drain();
    desktop.application(mail).faults.swallowedNotifications = {"AXWindowCreated"};
    for (int i = 0; i < 50; ++i)
        desktop.open(mail);
    for (int answers : {0, 1, 2, 8}) { // the list; and in the middle of a window
        desktop.application(mail).faults.messagesUntilHang = answers;
        auto before = now();

        manager.refreshWindows({mail});
        desktop.minimise(feed);
        desktop.drain();

        EXPECT_LE(now() - before, seconds(0.05)) << answers << " answers";
        EXPECT_EQ(heard.back().window, feed);
        desktop.restore(feed);
        desktop.application(mail).faults = {};
    }
}

TEST_F(AXObserverManagerTest, newsOfABusyApplicationDoNotPushItsRetryAway)
{
    attach();
    desktop.application(mail).faults.isHung = true;
    std::vector<WindowID> fresh;
    for (int i = 0; i < 8; ++i) {
        fresh.push_back(desktop.open(mail));
        desktop.advance(seconds(0.1));
    }
    desktop.application(mail).faults.isHung = false;

    desktop.advance(seconds(2));

    for (auto id : fresh)
        EXPECT_TRUE(isFullyRegistered(id));
}

TEST_F(AXObserverManagerTest, aWindowMadeWhileItsApplicationWasBusyIsListenedToHoweverLongThatWas)
{
    attach();
    auto half = desktop.open(mail);
    desktop.application(mail).faults.failingMessages = 1; // answers in the middle of registering
    desktop.advance(seconds(1));
    EXPECT_TRUE(isFullyRegistered(half));

    auto late = desktop.open(mail);
    desktop.application(mail).faults.isHung = true;
    desktop.advance(seconds(120));
    desktop.application(mail).faults.isHung = false;
    desktop.advance(seconds(9));

    EXPECT_TRUE(isFullyRegistered(late));
    EXPECT_EQ(heard.back().notification, ax::windowCreated) << "what it did meanwhile was not told";
    EXPECT_EQ(heard.back().window, late);
    EXPECT_EQ(desktop.dispatch().pendingTimers(), 0u);
}

TEST_F(AXObserverManagerTest, stoppingEndsEverythingAndItCanStartAgain)
{
    attach();
    desktop.move(inbox, {1, 1}); // pending
    desktop.drain();
    manager.stop();
    desktop.minimise(inbox);
    desktop.advance(seconds(1));
    EXPECT_THAT(heard, IsEmpty());
    EXPECT_EQ(desktop.dispatch().pendingTimers(), 0u);
    EXPECT_EQ(desktop.accessibility().observersOf(mail), 0u);

    manager.start();
    attach();
    desktop.minimise(draft);
    desktop.drain();
    EXPECT_EQ(heard.size(), 1u);
}

}
