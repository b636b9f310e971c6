#include "Quorvel/Skylight/WindowStore.h"

#include <cmath>

#include "Tests/Support/StoreFixture.h"

namespace quorvel::test {

namespace {

struct WindowStoreTest : StoreFixture {
    ProcessID mail = desktop.launch({.name = "Mail", .bundleIdentifier = "com.example.mail"});
};

}

// MARK: What is admitted

TEST_F(WindowStoreTest, populateTakesTheUsersWindowsAndNothingElse)
{
    struct Case {
        OpenOptions options;
        bool isAdmitted;
    };
    const std::vector<Case> cases{
        {{.title = "plain"}, true},
        {{.title = "40 x 40", .frame = {0, 0, 40, 40}}, true},
        {{.title = "39 x 400", .frame = {0, 0, 39, 400}}, false},
        {{.title = "400 x 39", .frame = {0, 0, 400, 39}}, false},
        {{.title = "39.999 x 400", .frame = {0, 0, 39.999, 400}}, false},
        {{.title = "no width", .frame = {0, 0, NAN, 400}}, false},
        {{.title = "transparent", .alpha = 0}, false},
        {{.title = "no alpha", .alpha = NAN}, false},
        {{.title = "nearly transparent", .alpha = 0.01F}, true},
        {{.title = "floating", .layer = 3}, false},
        {{.title = "below", .layer = -1}, false},
        {{.title = "no role", .role = std::nullopt}, false},
        {{.title = "other role", .role = "AXHelpTag"}, false},
        {{.title = "dialog", .subrole = "AXDialog"}, false},
        {{.title = "no subrole", .subrole = std::nullopt}, true},
        {{.title = "modal", .isModal = true}, false},
        {{.title = "minimised dialog", .subrole = "AXDialog", .isMinimized = true}, true},
        {{.title = "minimised modal", .isModal = true, .isMinimized = true}, false},
    };
    std::map<std::string, WindowID> windows;
    for (auto& each : cases)
        windows[each.options.title] = desktop.open(mail, each.options);

    store.populate();

    for (auto& each : cases)
        EXPECT_EQ(isTracked(windows[each.options.title]), each.isAdmitted) << each.options.title;
}

TEST_F(WindowStoreTest, entriesWithMissingKeysAreJudgedByWhatIsThere)
{
    auto noAlpha = desktop.open(mail);
    desktop.window(noAlpha).distortEntry = [](CGWindowInfo& info) { info.alpha.reset(); };
    auto noName = desktop.open(mail);
    desktop.window(noName).distortEntry = [](CGWindowInfo& info) { info.ownerName.reset(); };
    auto noBounds = desktop.open(mail);
    desktop.window(noBounds).distortEntry = [](CGWindowInfo& info) { info.bounds.reset(); };
    auto noLayer = desktop.open(mail);
    desktop.window(noLayer).distortEntry = [](CGWindowInfo& info) { info.layer.reset(); };
    auto noOwner = desktop.open(mail);
    desktop.window(noOwner).distortEntry = [](CGWindowInfo& info) { info.ownerPID.reset(); };
    desktop.windowServer().addStrayEntry({});
    desktop.windowServer().addStrayEntry({.windowNumber = {},
        .ownerPID = mail,
        .layer = 0,
        .bounds = Rect{0, 0, 500, 500},
        .alpha = {},
        .ownerName = {},
        .windowName = {}});

    store.populate();

    EXPECT_TRUE(isTracked(noAlpha));
    ASSERT_TRUE(isTracked(noName));
    EXPECT_EQ(store.window(noName)->appName, "Unknown");
    EXPECT_EQ(store.windows().size(), 2u);
}

TEST_F(WindowStoreTest, onlyRegularApplicationsWithABundleOfTheUserOwnWindows)
{
    auto openIn = [&](std::optional<std::string> bundle, ActivationPolicy policy) {
        return desktop.open(desktop.launch({.bundleIdentifier = bundle, .policy = policy}));
    };
    auto regular = openIn("com.example.a", ActivationPolicy::regular);
    openIn("com.example.b", ActivationPolicy::accessory);
    openIn("com.example.c", ActivationPolicy::prohibited);
    openIn(std::nullopt, ActivationPolicy::regular);
    for (auto* bundle : {"com.apple.dock", "com.apple.WindowManager", "com.apple.controlcenter",
             "com.apple.Spotlight", "com.apple.notificationcenterui", "com.apple.loginwindow"})
        openIn(bundle, ActivationPolicy::regular);
    auto ending = desktop.open(desktop.launch({.bundleIdentifier = "com.example.d"}));
    desktop.application(desktop.window(ending).pid).info.isTerminated = true;

    store.populate();

    ASSERT_EQ(store.windows().size(), 1u);
    EXPECT_TRUE(isTracked(regular));
}

TEST_F(WindowStoreTest, withoutTheResolverTheWindowNumberAttributeIdentifiesWindows)
{
    desktop.accessibility().setResolverAvailable(false);
    WindowStore other{platform.dispatch, platform.accessibility, platform.windowServer,
        platform.displays, platform.workspace, platform.trace};
    auto good = desktop.open(mail, {.title = "Good"});
    auto bad = desktop.open(mail);
    desktop.window(bad).faults.wrongAttributes["AXWindowNumber"] = std::string{"no number"};
    auto huge = desktop.open(mail);
    desktop.window(huge).faults.wrongAttributes["AXWindowNumber"] = 1e300;

    other.populate();

    ASSERT_EQ(other.windows().size(), 1u);
    EXPECT_EQ(other.windows().at(good).windowTitle, "Good");
}

TEST_F(WindowStoreTest, attributesOfTheWrongTypeCountAsMissing)
{
    auto id = desktop.open(mail, {.subrole = "AXDialog"});
    auto& faults = desktop.window(id).faults;
    faults.wrongAttributes["AXSubrole"] = 7.0; // absent, so eligible
    faults.wrongAttributes["AXModal"] = std::string{"yes"}; // absent, so not modal
    faults.wrongAttributes["AXMinimized"] = 1.0; // absent, so not minimised
    faults.wrongAttributes["AXTitle"] = true;

    store.populate();

    ASSERT_TRUE(isTracked(id));
    EXPECT_FALSE(store.window(id)->isMinimized);
    EXPECT_EQ(store.window(id)->windowTitle, "");
}

TEST_F(WindowStoreTest, anApplicationThatCannotBeAskedIsBelievedOnlyWhileItIsUnknown)
{
    auto known = desktop.open(mail, {.title = "Known"});
    store.populate();
    auto terminal = desktop.launch({.name = "Terminal", .bundleIdentifier = "com.example.t"});
    auto unknown = desktop.open(terminal);
    for (auto pid : {mail, terminal})
        desktop.application(pid).faults.missingAttributes.insert("AXWindows");
    auto late = desktop.open(mail);

    EXPECT_EQ(store.addWindowsForPID(terminal), 1);
    EXPECT_EQ(store.addWindowsForPID(mail), 0);

    EXPECT_TRUE(isTracked(unknown));
    EXPECT_TRUE(isTracked(known));
    EXPECT_FALSE(isTracked(late));
    desktop.application(mail).faults.missingAttributes.clear();
    desktop.advance(seconds(0.3));
    EXPECT_TRUE(isTracked(late)) << "the deferred scan must admit it once it is confirmed";
}

// MARK: What is kept and what goes

TEST_F(WindowStoreTest, aMissingWindowGoesWithTheFirstScanFrom450MillisecondsOn)
{
    auto id = desktop.open(mail);
    store.populate();
    changes = 0;
    hide(id);

    scanAfter(mail, seconds(1));
    scanAfter(mail, seconds(0.3));
    EXPECT_TRUE(isTracked(id)) << "two misses 0.3 s apart";
    scanAfter(mail, seconds(0.15) - Duration{1});
    EXPECT_TRUE(isTracked(id)) << "a moment too early";
    scanAfter(mail, Duration{1});

    EXPECT_FALSE(isTracked(id));
    EXPECT_EQ(changes, 1);
}

TEST_F(WindowStoreTest, oneMissIsNotEnoughHoweverLongItIsAgo)
{
    auto id = desktop.open(mail);
    store.populate();
    hide(id);
    scanAfter(mail, seconds(0.1));
    show(id);
    scanAfter(mail, seconds(5));
    hide(id);

    scanAfter(mail, seconds(5));

    EXPECT_TRUE(isTracked(id)) << "the count must start anew once the window was seen";

    // Changes of space follow each other faster than the look that a miss asks for.
    show(id);
    for (bool isHidden : {true, false, true}) {
        isHidden ? hide(id) : show(id);
        desktop.advance(seconds(0.3));
        store.discoverNewWindowsForTrackedPIDs();
        EXPECT_TRUE(isTracked(id));
    }
}

// Fault: an application that is none of the user's for a moment loses its chips for good.
TEST_F(WindowStoreTest, aProcessThatMayOwnNoWindowsLosesThemAtOnce)
{
    auto id = desktop.open(mail);
    store.populate();
    desktop.application(mail).info.activationPolicy = ActivationPolicy::accessory;
    store.discoverNewWindowsForTrackedPIDs();
    EXPECT_FALSE(isTracked(id));

    desktop.application(mail).info.activationPolicy = ActivationPolicy::regular;
    desktop.advance(seconds(0.5));
    EXPECT_TRUE(isTracked(id));
}

// Fault: what a window did not get to say counts as said, and its chip comes and goes.
TEST_F(WindowStoreTest, anApplicationThatHangsInTheMiddleOfAnAnswerKeepsItsChips)
{
    for (int i = 0; i < 3; ++i)
        desktop.open(mail, {.title = "Window", .isMinimized = i == 1});
    store.populate();
    auto before = store.windows();
    auto& faults = desktop.application(mail).faults;

    for (int answers = 0; answers < 20; ++answers) {
        for (int scan = 0; scan < 3; ++scan) {
            faults.isHung = false;
            faults.messagesUntilHang = answers;
            scanAfter(mail, seconds(0.5));
        }
        EXPECT_EQ(store.windows(), before) << answers << " answers";
    }
    faults = {.isDead = true};
    store.handleObserverAttached(mail);
    desktop.advance(seconds(60));
    EXPECT_EQ(store.windows(), before) << "it answers no more, but its windows are listed";
}

TEST_F(WindowStoreTest, aHungApplicationAmongHealthyOnesCostsOneTimeoutALookWhateverTheOccasion)
{
    for (int i = 0; i < 50; ++i)
        desktop.open(mail);
    for (int i = 0; i < 20; ++i)
        desktop.open(desktop.launch({.bundleIdentifier = "com.example." + std::to_string(i)}));
    desktop.activate(mail);
    desktop.application(mail).faults.isHung = true;
    auto cost = [&](auto&& work) {
        auto before = desktop.dispatch().now();
        work();
        return desktop.dispatch().now() - before;
    };

    EXPECT_EQ(cost([&] { store.populate(); }), seconds(0.05));
    EXPECT_EQ(store.windows().size(), 70u) << "believed from the window server alone";
    EXPECT_EQ(cost([&] { store.handleAppActivated(mail); }), seconds(0.05));
    EXPECT_EQ(cost([&] { store.addWindowsForPID(mail); }), seconds(0.05));
    EXPECT_EQ(cost([&] { store.addWindowsForPID(mail); }), seconds(0.05)) << "each asks anew";
    EXPECT_EQ(cost([&] { scanAfter(mail, Duration::zero()); }), seconds(0.05))
        << "the windows and the focus of an unobserved process";
    EXPECT_EQ(cost([&] { store.refreshSpaces(); }), Duration::zero());
    EXPECT_EQ(cost([&] { store.discoverNewWindowsForTrackedPIDs(); }), seconds(0.05));
    EXPECT_EQ(cost([&] { store.resyncMinimizedWindows(); }), seconds(0.05));
    EXPECT_EQ(cost([&] { store.trackSoleWindow(SpaceID{1}); }), seconds(0.05));
    auto window = desktop.application(mail).focusedWindow.value();
    for (auto name : {ax::windowCreated, ax::titleChanged, ax::focusedWindowChanged,
             ax::windowMiniaturized, ax::windowDeminiaturized})
        EXPECT_LE(cost([&] { store.handleAXEvent(event(window, name)); }), seconds(0.05)) << name;
    EXPECT_EQ(store.windows().size(), 70u);
    for (auto& message : desktop.accessibility().messages())
        EXPECT_EQ(message.timeout, 0.05F) << message.name;
}

// MARK: Spaces

// Fault: a window that no space was known of at the start is on none for ever.
TEST_F(WindowStoreTest, aWindowOfNoKnownSpaceAtTheStartIsAskedForAgain)
{
    auto id = desktop.open(mail);
    desktop.window(id).isInSpaceLists = false;
    desktop.windowServer().failSpacesOfWindows(true);
    store.populate();
    desktop.windowServer().failSpacesOfWindows(false);
    EXPECT_TRUE(store.window(id)->spaceIDs.empty());
    desktop.advance(seconds(0.3));
    EXPECT_EQ(store.window(id)->spaceIDs, std::set{SpaceID{1}});
}

// Fault: a call that fails reads as an empty answer, and chips go.
TEST_F(WindowStoreTest, callsThatAnswerNothingLoseNoWindow)
{
    auto& server = desktop.windowServer();
    auto id = desktop.open(mail, {.spaces = {SpaceID{1}, SpaceID{2}}});
    store.populate();
    desktop.windowServer().failSpaceLists(true);
    desktop.windowServer().failSpacesOfWindows(true);

    store.refreshSpaces();
    for (int i = 0; i < 3; ++i)
        scanAfter(mail, seconds(1));

    EXPECT_EQ(store.window(id)->spaceIDs, (std::set{SpaceID{1}, SpaceID{2}}));
    server.failSpaceLists(false);
    server.failWindowsOfSpace(SpaceID{2});
    store.refreshSpaces();
    EXPECT_EQ(store.window(id)->spaceIDs, (std::set{SpaceID{1}, SpaceID{2}}));
    server.failSpacesOfWindows(false);
    desktop.moveToSpace(id, SpaceID{3});
    auto other = desktop.open(mail, {.spaces = {SpaceID{2}}});
    scanAfter(mail, seconds(1));
    EXPECT_EQ(store.window(id)->spaceIDs, std::set{SpaceID{3}});
    EXPECT_TRUE(isTracked(other)) << "asked for alone";

    server.failWindowLists(true);
    WindowStore late{platform.dispatch, platform.accessibility, platform.windowServer,
        platform.displays, platform.workspace, platform.trace};
    late.populate();
    store.discoverNewWindowsForTrackedPIDs();
    for (int i = 0; i < 5; ++i)
        scanAfter(mail, seconds(1));
    EXPECT_EQ(store.windows().size(), 2u);
    server.failWindowLists(false);
    desktop.advance(seconds(10));
    EXPECT_EQ(late.windows().size(), 2u) << "looked for until there is an answer";
}

}
