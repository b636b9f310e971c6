#include "Quorvel/Core/WindowAvoidanceManager.h"

#include <optional>

#include "Tests/Support/StoreFixture.h"

namespace quorvel::test {

namespace {

/// On a display of 900 points, with a bar of 44: windows have to end at 855.
struct WindowAvoidanceTest : StoreFixture {
    static constexpr double kLimit = 855;
    static constexpr std::string_view kQueue = "com.quorvel.windowAvoidance";

    std::set<SpaceID> panels{SpaceID{1}};
    std::vector<std::size_t> mirrors;
    std::optional<WindowAvoidanceManager> manager;
    ProcessID app = desktop.launch();

    WindowAvoidanceTest()
    {
        SpaceWindows spaces{platform.windowServer, platform.displays};
        manager.emplace(store, platform.dispatch, platform.accessibility, platform.windowServer,
            platform.displays,
            WindowAvoidanceManager::Bars{[this] { return panels; }, [this] { return mirrors; },
                [spaces] { return spaces.ask(); }});
        manager->setBarHeight(44);
    }

    WindowID open(Rect frame, std::set<SpaceID> spaces = {})
    {
        return desktop.open(app, {.frame = frame, .spaces = std::move(spaces)});
    }
    /// A second display to the right of the first, lower than it and with spaces of its own.
    void plugSecondDisplay()
    {
        auto displays = desktop.model().displays;
        displays.push_back({.number = DisplayNumber{2},
            .identifier = "second",
            .frame = {1440, 300, 800, 600},
            .spaces = {{SpaceID{11}}},
            .current = SpaceID{11}});
        desktop.setDisplays(displays);
    }
    void adjust()
    {
        store.populate();
        manager->adjustNow();
        desktop.drain();
        store.populate();
        manager->windowsDidChange();
    }
    Rect frame(WindowID id) { return desktop.window(id).frame; }
};

}

TEST_F(WindowAvoidanceTest, shortensWhatReachesUnderTheBarAndNothingElse)
{
    auto atLimit = open({10, 200, 500, kLimit - 200});
    auto below = open({20, 200, 500, kLimit - 200 + 1});
    auto lowest = open({30, kLimit - 100, 500, 140});
    auto tooLow = open({30, kLimit - 99, 500, 140});
    auto minimised = open({50, 200, 500, 690});
    desktop.minimise(minimised);
    auto mostlyOutside = open({1300, 200, 500, 690});

    adjust();

    EXPECT_EQ(frame(atLimit), (Rect{10, 200, 500, kLimit - 200}));
    EXPECT_EQ(frame(below), (Rect{20, 200, 500, kLimit - 200}));
    EXPECT_EQ(frame(lowest), (Rect{30, kLimit - 100, 500, 100}));
    EXPECT_EQ(frame(tooLow).height, 140);
    EXPECT_EQ(frame(minimised).height, 690);
    EXPECT_EQ(frame(mostlyOutside).height, 690);
    for (auto& message : desktop.accessibility().messages(app, AXMessage::Kind::set))
        EXPECT_EQ(message.thread, kQueue);
}

TEST_F(WindowAvoidanceTest, looksAtTheWindowsOfASpaceOrOfAllWhereDisplaysShareThem)
{
    auto here = open({10, 200, 500, 690}, {SpaceID{1}});
    auto elsewhere = open({10, 200, 500, 690}, {SpaceID{2}});

    panels = {SpaceID{2}};
    adjust();
    EXPECT_EQ(frame(here).height, 690) << "the space that is shown has no bar";
    panels = {SpaceID{1}};
    adjust();
    EXPECT_EQ(frame(here).maxY(), kLimit);
    EXPECT_EQ(frame(elsewhere).height, 690);
    desktop.setSeparateSpaces(false);
    adjust();
    EXPECT_EQ(frame(elsewhere).maxY(), kLimit);
}

TEST_F(WindowAvoidanceTest, measuresEachBarOnItsOwnDisplay)
{
    plugSecondDisplay();
    panels = {SpaceID{1}, SpaceID{11}};
    constexpr Rect onSecond{1500, 100, 400, 490}; // whose bottom lies 600 below the first's top
    constexpr double secondLimit = 600 - 45;
    auto window = open(onSecond, {SpaceID{11}});

    adjust();
    EXPECT_EQ(frame(window).maxY(), secondLimit);

    // A display that the window server calls by an unknown name is the one of that place.
    desktop.place(window, onSecond);
    desktop.windowServer().distortSpaces(
        [](auto& displays) { displays.at(1).identifier = std::string{"nobody"}; });
    adjust();
    EXPECT_EQ(frame(window).maxY(), secondLimit);
    desktop.windowServer().distortSpaces({});

    // A mirror bar counts for every window on its screen, whatever its space.
    desktop.place(window, onSecond);
    panels = {SpaceID{1}};
    mirrors = {7, 1};
    adjust();
    EXPECT_EQ(frame(window).maxY(), secondLimit);

    desktop.place(window, onSecond);
    desktop.setDisplays({});
    adjust();
    EXPECT_EQ(frame(window), onSecond);
}

// Fault: a window that is maximised just then is too short, by as much as it has moved up.
TEST_F(WindowAvoidanceTest, measuresAWindowWhereItIsByThen)
{
    auto maximised = open({10, 200, 500, 690});
    auto clear = open({10, 200, 500, 690});
    store.populate();
    manager->adjustNow();
    desktop.place(maximised, {0, 0, 1440, 900});
    desktop.place(clear, {10, 100, 500, 690});
    desktop.drain();
    EXPECT_EQ(frame(maximised), (Rect{0, 0, 1440, kLimit}));
    EXPECT_EQ(frame(clear), (Rect{10, 100, 500, 690}));
}

// One application that hangs must not keep the bar, nor the windows of others, waiting.
TEST_F(WindowAvoidanceTest, aHungApplicationCostsTheQueueOneTimeOut)
{
    for (int i = 0; i < 5; ++i)
        open({10, 200, 500, 690});
    auto other = desktop.launch({.name = "Other", .bundleIdentifier = "com.example.other"});
    auto window = desktop.open(other, {.frame = {10, 200, 500, 690}});
    store.populate();
    desktop.application(app).faults.isHung = true;
    auto start = desktop.dispatch().now();

    manager->adjustNow();
    EXPECT_EQ(desktop.dispatch().now(), start) << "nobody was asked on the main thread";
    desktop.drain();

    EXPECT_EQ(frame(window).maxY(), kLimit);
    EXPECT_EQ(desktop.dispatch().now() - start, seconds(0.05));
}

TEST_F(WindowAvoidanceTest, aWindowThatCannotBeResizedHarmsNoOther)
{
    auto refusing = open({10, 200, 500, 690});
    desktop.window(refusing).faults.refusedRequests.insert(std::string{ax::size});
    auto wrong = open({10, 200, 500, 690});
    desktop.window(wrong).faults.wrongAttributes[std::string{ax::size}] = std::string{"large"};
    auto unlisted = open({10, 200, 500, 690});
    auto nameless = open({10, 200, 500, 690});
    auto closed = open({10, 200, 500, 690});
    auto last = open({10, 200, 500, 690});
    auto gone = desktop.launch({.name = "Gone"});
    desktop.open(gone, {.frame = {10, 200, 500, 690}});
    store.populate();
    desktop.window(unlisted).faults.isListed = false;
    desktop.window(nameless).faults.hasWindowNumber = false;

    manager->adjustNow();
    desktop.close(closed);
    desktop.crash(gone);
    desktop.drain();

    EXPECT_EQ(frame(refusing).height, 690);
    EXPECT_EQ(frame(wrong).height, 690);
    EXPECT_EQ(frame(last).maxY(), kLimit);

    // Who refused is asked again when the window is somewhere else, and where it was before.
    auto askedFor = [&] {
        adjust();
        auto sets = desktop.accessibility().messages(app, AXMessage::Kind::set);
        desktop.accessibility().forgetMessages();
        return std::ranges::count(sets, refusing, &AXMessage::window);
    };
    desktop.accessibility().forgetMessages();
    EXPECT_EQ(askedFor(), 0);
    desktop.place(refusing, {20, 200, 500, 690});
    EXPECT_EQ(askedFor(), 1);
    desktop.place(refusing, {10, 200, 500, 690});
    EXPECT_EQ(askedFor(), 1);
    EXPECT_EQ(askedFor(), 0);

    desktop.accessibility().setResolverAvailable(false);
    auto unmatched = open({10, 200, 500, 690});
    adjust();
    EXPECT_EQ(frame(unmatched).height, 690) << "its number alone proves nothing";
}

TEST_F(WindowAvoidanceTest, onlyTheLastOfSeveralSchedulesRunsAndNoneAfterItsEnd)
{
    auto window = open({10, 200, 500, 690});
    store.populate();
    manager->scheduleAdjustment(seconds(0.1));
    desktop.advance(seconds(0.09));
    manager->scheduleAdjustment(seconds(0.5));
    desktop.advance(seconds(0.49));
    EXPECT_EQ(frame(window).height, 690);
    desktop.advance(seconds(0.01));
    EXPECT_EQ(frame(window).maxY(), kLimit);

    // Titles say nothing of where a window is.
    store.populate();
    manager->windowsDidChange();
    desktop.advance(seconds(1));
    auto isScheduledAfter = [&](auto change) {
        change();
        store.populate();
        desktop.drain();
        auto timers = desktop.dispatch().pendingTimers();
        manager->windowsDidChange();
        return desktop.dispatch().pendingTimers() > timers;
    };
    EXPECT_FALSE(isScheduledAfter([&] { desktop.retitle(window, "Other"); }));
    EXPECT_TRUE(isScheduledAfter([&] { desktop.place(window, {10, 200, 500, 600}); }));
    desktop.advance(seconds(20));

    // A list that nobody has begun with gives way to what is found now, be it nothing.
    desktop.place(window, {10, 200, 500, 690});
    adjust();
    desktop.place(window, {10, 200, 500, 700});
    store.populate();
    manager->adjustNow();
    panels.clear();
    manager->adjustNow();
    desktop.drain();
    EXPECT_EQ(frame(window).height, 700);

    panels = {SpaceID{1}};
    manager->scheduleAdjustment(Duration::zero());
    manager.reset();
    desktop.drain();
    EXPECT_EQ(frame(window).height, 700);
    EXPECT_EQ(desktop.dispatch().pendingTimers(), 0U);
}

}
