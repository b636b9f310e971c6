#include "Quorvel/Core/BarManager.h"

#include <cstdlib>
#include <random>

#include "Tests/Support/BarFixture.h"
#include "Tests/Support/Seed.h"

namespace quorvel::test {

using testing::Key;

namespace {

constexpr DisplayNumber kFirst{1};
constexpr DisplayNumber kSecond{2};
constexpr Point kOnBar{700, 10};

/// A variable of the environment while it lives.
struct Switch {
    explicit Switch(const char* name) : m_name(name) { setenv(name, "1", 1); }
    ~Switch() { unsetenv(m_name); }
    const char* m_name;
};

struct BarManagerTest : BarFixture {
    ProcessID mail = desktop.launch({.name = "Mail", .bundleIdentifier = "com.example.mail"});
    ProcessID editor = desktop.launch({.name = "Editor", .bundleIdentifier = "com.example.editor"});
    WindowID inbox = desktop.open(mail, {.title = "Inbox"});

    BarManagerTest() { desktop.activate(mail); }

    FakeSurfaces& surfaces() { return desktop.surfaces(); }

    /// To the right of the first, lower and taller, with spaces 11 and 12.
    FakeDisplay second() const
    {
        return {.number = kSecond,
            .identifier = "SECOND",
            .frame = {1440, -200, 1000, 1200},
            .spaces = {{SpaceID{11}}, {SpaceID{12}}},
            .current = SpaceID{11}};
    }
    /// Both displays switch together, and the second has no spaces of its own.
    void startWithSharedSpaces()
    {
        auto other = second();
        other.spaces.clear();
        other.current = {};
        desktop.addDisplay(other);
        desktop.setSeparateSpaces(false);
        start();
    }
    void addFullscreenSpace(SpaceID space)
    {
        auto displays = desktop.model().displays;
        displays.front().spaces.insert(displays.front().spaces.begin() + 1, {space, 4});
        desktop.setDisplays(displays);
    }
    /// The titles on the bar of the first space that lies on this display.
    std::vector<std::string> titles(DisplayNumber display)
    {
        return chipTexts(*surfaces().panel(SpaceID{1}, display));
    }
    void showOnAllDisplays(bool value)
    {
        runtime->userSettings().setShowOnAllDisplays(value);
        desktop.drain();
    }
};

}

// MARK: Switching spaces

// Faults: notches that come during a switch are lost, count after the last space, or in spite of
// one back; a switch that is under way is overtaken.
TEST_F(BarManagerTest, eachNotchOfTheWheelIsAStepHoweverFastTheyCome)
{
    auto displays = desktop.model().displays;
    displays.front().spaces.push_back({SpaceID{4}});
    desktop.setDisplays(displays);
    start();
    auto scroll = [this](double deltaY) {
        panel(current()).scroll(kOnBar, deltaY);
        desktop.drain();
        return current();
    };

    EXPECT_EQ(scroll(0), SpaceID{1});
    EXPECT_EQ(scroll(-1), SpaceID{2});
    desktop.advance(seconds(0.15));
    EXPECT_EQ(scroll(-1), SpaceID{2}) << "the first switch is under way";
    EXPECT_EQ(scroll(-1), SpaceID{2});
    desktop.advance(seconds(0.23));
    EXPECT_EQ(current(), SpaceID{3});
    desktop.advance(seconds(0.37));
    EXPECT_EQ(current(), SpaceID{3});
    desktop.advance(seconds(0.01));
    EXPECT_EQ(current(), SpaceID{4});
    desktop.advance(seconds(0.38));
    EXPECT_EQ(scroll(-1), SpaceID{4}) << "there is none beyond";

    EXPECT_EQ(scroll(1), SpaceID{3});
    scroll(1);
    scroll(-1);
    desktop.advance(seconds(1));
    EXPECT_EQ(current(), SpaceID{3}) << "one forth, one back";
    for (int i = 0; i < 9; ++i)
        scroll(-1);
    desktop.advance(seconds(1));
    EXPECT_EQ(scroll(1), SpaceID{3}) << "what led nowhere is forgotten";
}

// Faults: a sideways swipe with a little vertical noise switches the space; each event of a gesture
// is a step of its own, or what rolls on after it.
TEST_F(BarManagerTest, aGestureIsOneStepAlongItsLargerAxis)
{
    start();
    auto swipe = [this](double x, double y) {
        constexpr int events = 20;
        auto at = [&](ScrollPhase phase, bool isMomentum = false) {
            panel(current()).scroll({.location = kOnBar,
                .deltaX = x,
                .deltaY = y,
                .unit = ScrollUnit::points,
                .phase = phase,
                .isMomentum = isMomentum});
            desktop.advance(seconds(0.05));
        };
        at(ScrollPhase::began);
        for (int i = 0; i < events; ++i)
            at(ScrollPhase::changed);
        at(ScrollPhase::ended);
        at(ScrollPhase::none, true);
        return current();
    };
    EXPECT_EQ(swipe(-6, -1), SpaceID{1});
    EXPECT_EQ(swipe(1, -6), SpaceID{2}) << "it took longer than the switch";
    EXPECT_EQ(swipe(0, -0.1), SpaceID{2}) << "too little to go by";
    panel(current()).scroll({.location = kOnBar, .deltaX = 2, .deltaY = 1});
    desktop.drain();
    EXPECT_EQ(current(), SpaceID{2});
}

TEST_F(BarManagerTest, whichWayAWheelTurnsIsTheUsersChoice)
{
    start();
    auto end = [this](SpaceScrollUpBehavior up, double deltaY, bool isInverted) {
        desktop.activateSpace(SpaceID{2});
        runtime->userSettings().setScrollUpSpaceSwitch(up);
        desktop.advance(seconds(1));
        panel(SpaceID{2}).scroll(kOnBar, deltaY, isInverted);
        desktop.drain();
        return raw(current());
    };
    using enum SpaceScrollUpBehavior;
    EXPECT_EQ(end(left, 1, false), 1u);
    EXPECT_EQ(end(left, -1, false), 3u);
    EXPECT_EQ(end(left, 1, true), 3u);
    EXPECT_EQ(end(right, 1, false), 3u);
    EXPECT_EQ(end(right, -1, true), 3u);
    EXPECT_EQ(end(right, 1, true), 1u);
}

TEST_F(BarManagerTest, theSystemsKeysAreUsedWhereItHasThemAndLeftAsTheyWere)
{
    constexpr std::uint64_t control = 0x40000;
    addFullscreenSpace(SpaceID{50});
    desktop.addDisplay(second());
    // Desktops are counted across displays, without full-screen spaces: 1, 2, 3, then 11, 12.
    server().setDesktopHotKey(119, {.keys = {19, control}, .isEnabled = false}, SpaceID{2});
    server().setDesktopHotKey(122, {.keys = {23, control}}, SpaceID{12});
    server().setDesktopHotKey(
        120, {.keys = {20, control}, .isEnabled = false, .canBeEnabled = false}, SpaceID{3});
    start();

    manager().switchToSpace(SpaceID{2});
    desktop.drain();
    EXPECT_EQ(current(), SpaceID{2});
    EXPECT_THAT(server().postedKeys(),
        ElementsAre(FakeWindowServer::PostedKey{19, KeyAction::down, control},
            FakeWindowServer::PostedKey{19, KeyAction::up, 0}));
    EXPECT_FALSE(desktop.workspace().isSelfActive());

    manager().switchToSpace(SpaceID{12});
    desktop.drain();
    EXPECT_EQ(current(1), SpaceID{12});
    EXPECT_THAT(server().postedKeys(), SizeIs(4));

    manager().switchToSpace(SpaceID{3});
    desktop.drain();
    EXPECT_EQ(current(), SpaceID{3}) << "through its panel: the key may not be switched on";
    EXPECT_THAT(server().postedKeys(), SizeIs(4));

    desktop.program().terminate(); // without destructors, as where the system ends the session
    EXPECT_FALSE(server().isSymbolicHotKeyEnabled(119));
    EXPECT_TRUE(server().isSymbolicHotKeyEnabled(122));
}

// Faults: the application in front before would take the user back to where its windows are; the
// spaces are asked for anew for each of its windows.
TEST_F(BarManagerTest, afterASwitchTheFocusGoesToWhoHasAWindowThere)
{
    auto notes = desktop.open(editor, {.title = "Notes", .spaces = {SpaceID{2}}});
    start();
    manager().switchToSpace(SpaceID{2});
    desktop.drain();
    EXPECT_EQ(current(), SpaceID{2});
    EXPECT_EQ(desktop.workspace().frontmostApplication(), editor) << raw(notes);
    EXPECT_FALSE(panel(SpaceID{2}).canBecomeKey());

    desktop.activate(mail);
    desktop.open(mail, {.title = "Draft", .spaces = {SpaceID{3}}, .takesFocus = false});
    settle();
    auto asked = desktop.windowServer().spaceQueries();
    manager().switchToSpace(SpaceID{3});
    desktop.drain();
    EXPECT_EQ(desktop.workspace().frontmostApplication(), mail);
    EXPECT_EQ(desktop.windowServer().spaceQueries() - asked, 3)
        << "before the switch, after it and with the new focus, but not for each window";

    auto before = desktop.workspace().activations().size();
    manager().switchToSpace(SpaceID{1});
    desktop.workspace().setSelfActive(false);
    desktop.drain();
    EXPECT_EQ(desktop.workspace().activations().size(), before) << "somebody has it already";

    surfaces().setFollowsKeyPanels(false);
    manager().switchToSpace(SpaceID{2}, mail);
    EXPECT_TRUE(desktop.workspace().isSelfActive());
    desktop.advance(seconds(1));
    EXPECT_FALSE(desktop.workspace().isSelfActive()) << "the switch was refused";
}

TEST_F(BarManagerTest, aFullScreenSpaceHasNoBarAndIsReachedThroughItsProxy)
{
    addFullscreenSpace(SpaceID{50});
    auto film = desktop.open(
        editor, {.title = "Film", .frame = {0, 0, 1440, 900}, .spaces = {SpaceID{50}}});
    start();
    EXPECT_EQ(surfaces().panel(SpaceID{50}), nullptr);
    ASSERT_NE(surfaces().fullscreenProxy(SpaceID{50}), nullptr);
    EXPECT_THAT(surfaces().fullscreenProxy(SpaceID{50})->render().operations(), IsEmpty());

    panel(SpaceID{1}).scroll(kOnBar, -1);
    desktop.advance(seconds(0.1));
    EXPECT_EQ(current(), SpaceID{50});
    EXPECT_EQ(model().focusedWindowID.value(), film);
    EXPECT_EQ(desktop.workspace().frontmostApplication(), editor);
    EXPECT_FALSE(surfaces().fullscreenProxy(SpaceID{50})->canBecomeKey());

    auto displays = desktop.model().displays;
    std::erase_if(displays.front().spaces, [](auto& space) { return space.type == 4; });
    displays.front().current = SpaceID{1};
    desktop.setDisplays(displays);
    desktop.drain();
    EXPECT_EQ(surfaces().fullscreenProxy(SpaceID{50}), nullptr);
    EXPECT_THAT(surfaces().panels(), SizeIs(3));
}

// MARK: Several displays

TEST_F(BarManagerTest, furtherScreensHaveBarsOfTheirOwnWindowsIfTheUserWantsThem)
{
    desktop.open(mail, {.title = "There", .frame = {1600, 200, 400, 400}});
    startWithSharedSpaces();
    EXPECT_THAT(surfaces().panels(), SizeIs(3));
    EXPECT_THAT(titles(kFirst), ElementsAre("Inbox", "There")) << "one bar stands for all";

    showOnAllDisplays(true);
    EXPECT_THAT(surfaces().panels(), SizeIs(6));
    EXPECT_THAT(titles(kFirst), ElementsAre("Inbox"));
    EXPECT_THAT(titles(kSecond), ElementsAre("There"));
    desktop.place(inbox, {9000, 9000, 400, 300});
    settle();
    EXPECT_THAT(titles(kFirst), ElementsAre("Inbox")) << "on no screen counts as on the first";
    EXPECT_THAT(titles(kSecond), ElementsAre("There"));
    desktop.place(inbox, {100, 100, 400, 300});
    EXPECT_EQ(surfaces().panel(SpaceID{2}, kSecond)->frame(), (Rect{1440, -200, 1000, 36}));
    EXPECT_THAT(server().dockRectangles(),
        UnorderedElementsAre(
            Pair(kFirst, Rect{0, 864, 1440, 36}), Pair(kSecond, Rect{1440, 1064, 1000, 36})));

    // One that shows the same picture as the second needs none.
    auto projector = second();
    projector.number = DisplayNumber{3};
    projector.spaces.clear();
    desktop.addDisplay(projector);
    desktop.drain();
    EXPECT_THAT(surfaces().panels(), SizeIs(6));

    auto displays = desktop.model().displays;
    displays.resize(1);
    desktop.setDisplays(displays);
    desktop.drain();
    EXPECT_THAT(titles(kFirst), ElementsAre("Inbox", "There"));
    EXPECT_THAT(server().dockRectangles(), ElementsAre(Key(kFirst)));

    desktop.addDisplay(second());
    desktop.drain();
    showOnAllDisplays(false);
    EXPECT_THAT(surfaces().panels(), SizeIs(3));
    EXPECT_THAT(titles(kFirst), ElementsAre("Inbox", "There"));
}

// Faults: one answer that does not come takes every bar down; spaces that follow their screen are
// not seen; the question is repeated for ever.
TEST_F(BarManagerTest, theBarsStayWhileNobodySaysWhichSpacesThereAre)
{
    start();
    server().distortSpaces([](auto& displays) { displays.resize(1); });
    desktop.addDisplay(second());
    desktop.advance(seconds(0.4));
    EXPECT_THAT(surfaces().panels(), SizeIs(3));
    server().distortSpaces({});
    desktop.advance(seconds(0.1));
    EXPECT_THAT(surfaces().panels(), SizeIs(5)) << "looked at once more";

    auto made = surfaces().panelsMade();
    for (bool isEmpty : {false, true}) {
        server().failSpaceLists(!isEmpty);
        if (isEmpty)
            server().distortSpaces([](auto& displays) { displays.clear(); });
        desktop.wake();
        desktop.advance(seconds(60));
        EXPECT_THAT(titles(kFirst), ElementsAre("Inbox"));
        EXPECT_EQ(desktop.dispatch().pendingTimers(), 0U);
    }
    EXPECT_EQ(surfaces().panelsMade(), made);

    server().distortSpaces({});
    desktop.wake();
    desktop.drain();
    server().failSpaceLists(true);
    desktop.setDisplays({second()});
    desktop.advance(seconds(0.9));
    server().failSpaceLists(false);
    desktop.advance(seconds(0.2));
    EXPECT_THAT(surfaces().panels(), SizeIs(2));
}

namespace {

/// Displays that come, go, turn and change places: beside each other, stacked, mirrored.
struct RandomDisplays {
    std::mt19937 random;
    std::size_t below(std::size_t limit) { return random() % limit; }

    std::vector<FakeDisplay> operator()()
    {
        std::vector<FakeDisplay> displays;
        Point at{double(below(3)) * 100 - 100, double(below(3)) * 100 - 100};
        for (std::size_t count = below(4); displays.size() < count;) {
            auto number = 1 + displays.size() + below(2) * 10;
            FakeDisplay display{.number = DisplayNumber(number),
                .identifier = "display-" + std::to_string(number),
                .frame = {0, 0, 1000 + double(below(3)) * 200, 700 + double(below(3)) * 100}};
            if (below(3) == 0)
                display = display.rotated();
            for (std::size_t i = 0; i <= below(3); ++i)
                display.spaces.push_back({SpaceID{number * 100 + i}, below(4) == 0 ? 4 : 0});
            display.current = display.spaces.back().id;
            displays.push_back(display.at(at));
            if (auto next = below(3); next == 0)
                at.x += display.frame.width;
            else if (next == 1)
                at.y += display.frame.height;
        }
        return displays;
    }
};

}

// Faults: a bar that stays where a screen was, is missing, or lies on the wrong one.
TEST_F(BarManagerTest, barsAreWhereTheyBelongHoweverTheDisplaysChange)
{
    const auto seed = test::seed();
    SCOPED_TRACE("QUORVEL_TEST_SEED=" + std::to_string(seed));
    RandomDisplays random{std::mt19937{seed}};
    start();
    for (int change = 0; change < 200 && !HasFailure(); ++change) {
        desktop.setSeparateSpaces(random.below(2) == 0);
        runtime->userSettings().setShowOnAllDisplays(random.below(2) == 0);
        auto displays = random();
        if (!displays.empty())
            desktop.setMainDisplay(displays[random.below(displays.size())].number);
        desktop.setDisplays(displays);
        desktop.drain();

        std::set<std::pair<SpaceID, DisplayNumber>> places;
        std::set<DisplayNumber> covered;
        for (auto* shown : surfaces().panels()) {
            auto& options = shown->options();
            auto* display = desktop.model().display(options.display);
            ASSERT_TRUE(display) << "on a display that is gone";
            EXPECT_TRUE(places.insert({options.space, options.display}).second) << "twice";
            if (options.kind == PanelKind::fullscreenProxy)
                continue;
            covered.insert(options.display);
            auto& frame = display->frame;
            EXPECT_EQ(shown->frame(), (Rect{frame.x, frame.y, frame.width, 36}));
        }
        auto spaces = SpaceWindows{server(), desktop.displays()}.getSpaces();
        for (auto& space : displays.empty() ? std::vector<SpaceWindows::Info>{} : spaces) {
            auto own = surfaces().panel(space.spaceID);
            EXPECT_EQ(own != nullptr, space.spaceType != kFullscreenSpaceType);
        }
        EXPECT_EQ(server().dockRectangles().size(), covered.size());
    }
}

// Fault: a thousand spaces cost what a thousand bars cost, though the user looks at three.
TEST_F(BarManagerTest, aBarIsFilledWhenItsSpaceIsFirstShown)
{
    start();
    EXPECT_FALSE(bar(SpaceID{2}).content());
    runtime->userSettings().setBarSize(BarSize::xl);
    showOnAllDisplays(true);
    desktop.open(desktop.launch({.name = "Mail"}), {.title = "There", .spaces = {SpaceID{2}}});
    settle();
    EXPECT_FALSE(bar(SpaceID{2}).content());
    desktop.activateSpace(SpaceID{2});
    desktop.drain();
    EXPECT_THAT(chipTexts(SpaceID{2}), ElementsAre("There")) << "at once";
    EXPECT_EQ(panel(SpaceID{2}).frame().height, 54);
}

// Faults: a title is told to bars that do not show it; a bar that has been shown once works on
// unseen, or misses what happened meanwhile.
TEST_F(BarManagerTest, aBarIsTouchedWhenWhatItShowsChangesAndWhenItIsSeen)
{
    desktop.addDisplay(second());
    auto away = desktop.open(mail, {.title = "Away", .spaces = {SpaceID{2}}});
    auto far = desktop.open(
        mail, {.title = "Far", .frame = {1500, 100, 400, 400}, .spaces = {SpaceID{11}}});
    start();
    for (auto space : {SpaceID{2}, SpaceID{1}}) {
        desktop.activateSpace(space);
        desktop.drain();
    }
    std::set<std::uint64_t> told;
    auto subscription = model().barsDidChange.subscribe([&](auto& spaces) {
        for (auto space : spaces)
            told.insert(raw(space));
    });
    auto toldOf = [&](const std::function<void()>& change) {
        told.clear();
        change();
        settle();
        return told;
    };
    EXPECT_THAT(toldOf([&] { desktop.retitle(far, "Other"); }), ElementsAre(11));
    EXPECT_THAT(toldOf([&] { desktop.move(inbox, {120, 100}); }), ElementsAre(1));

    auto& unseen = content(SpaceID{2});
    EXPECT_THAT(toldOf([&] {
        desktop.retitle(away, "Unseen");
        desktop.open(editor, {.title = "New", .spaces = {SpaceID{2}}, .takesFocus = false});
    }),
        ElementsAre(2));
    EXPECT_THAT(unseen.chipFrames(), SizeIs(1)) << "it rests";
    desktop.activateSpace(SpaceID{2});
    desktop.drain();
    EXPECT_THAT(chipTexts(SpaceID{2}), ElementsAre("Unseen", "New"));
    EXPECT_EQ(&unseen, &content(SpaceID{2})) << "not made anew";
}

// MARK: What other windows are told

TEST_F(BarManagerTest, anotherSizeMovesEachBarOnceAndTheSameSizeNone)
{
    start();
    auto calls = server().dockRectangleCalls();
    auto frames = [this] { return panel().frames().size(); };
    auto before = frames();
    runtime->userSettings().setBarSize(BarSize::xl);
    desktop.drain();
    EXPECT_EQ(panel().frame(), (Rect{0, 0, 1440, 54}));
    EXPECT_EQ(frames(), before + 1);
    EXPECT_EQ(server().dockRectangleCalls(), calls + 1);
    EXPECT_EQ(server().dockRectangles().at(kFirst), (Rect{0, 846, 1440, 54}));

    runtime->userSettings().setShowChipTitles(false);
    runtime->userSettings().setBarSize(BarSize::xl);
    desktop.drain();
    EXPECT_EQ(frames(), before + 1);
    EXPECT_EQ(server().dockRectangleCalls(), calls + 1);
    EXPECT_THAT(server().edgeReservations(), IsEmpty()) << "nobody asked for them";

    server().refuseDockRectangles(true);
    runtime->userSettings().setBarSize(BarSize::small);
    desktop.drain();
    EXPECT_EQ(server().dockRectangles().at(kFirst), (Rect{0, 846, 1440, 54}));
    server().refuseDockRectangles(false);
    runtime->userSettings().setShowChipTitles(true);
    desktop.drain();
    EXPECT_EQ(server().dockRectangles().at(kFirst), (Rect{0, 870, 1440, 30}))
        << "what was refused is not booked as applied";
}

TEST_F(BarManagerTest, edgesAreReservedOnEverySpaceWhereThatIsSwitchedOn)
{
    Switch edges{"QUORVEL_EDGE_RESERVATION"};
    start();
    EXPECT_THAT(server().edgeReservations(),
        ElementsAre(Pair(SpaceID{1}, 36), Pair(SpaceID{2}, 36), Pair(SpaceID{3}, 36)));

    runtime->userSettings().setBarSize(BarSize::small);
    auto displays = desktop.model().displays;
    displays.front().spaces.pop_back();
    desktop.setDisplays(displays);
    desktop.drain();
    EXPECT_THAT(
        server().edgeReservations(), ElementsAre(Pair(SpaceID{1}, 30), Pair(SpaceID{2}, 30)));

    desktop.program().terminate();
    EXPECT_THAT(server().edgeReservations(), IsEmpty());
}

TEST_F(BarManagerTest, windowsThatReachUnderABarAreShortened)
{
    auto low = desktop.open(editor, {.frame = {100, 300, 400, 590}});
    auto far = desktop.open(editor, {.frame = {1600, 300, 400, 800}});
    auto bottom = [this](WindowID id) { return desktop.window(id).frame.maxY(); };
    startWithSharedSpaces();
    EXPECT_EQ(bottom(low), 863) << "after the start";
    EXPECT_EQ(bottom(far), 1100) << "no bar there";

    desktop.place(low, {100, 300, 400, 600});
    desktop.advance(seconds(0.5));
    EXPECT_EQ(bottom(low), 863) << "after a change of the window";
    runtime->userSettings().setBarSize(BarSize::xxl);
    desktop.drain();
    EXPECT_EQ(bottom(low), 833);
    showOnAllDisplays(true);
    EXPECT_EQ(bottom(far), 1033) << "under the bar of the other screen";
}

// MARK: The pointer and the keyboard

TEST_F(BarManagerTest, aBarMayTakeTheKeyboardOnlyUnderThePointer)
{
    start();
    EXPECT_FALSE(panel().canBecomeKey());
    panel().movePointer({5, 10});
    EXPECT_TRUE(panel().canBecomeKey());
    manager().setHoverKeyingSuppressed(true);
    EXPECT_FALSE(panel().canBecomeKey());
    manager().switchToSpace(SpaceID{2});
    EXPECT_EQ(current(), SpaceID{2}) << "which is not the pointer's doing";
    manager().setHoverKeyingSuppressed(false);
    EXPECT_TRUE(panel().canBecomeKey());
    panel().leave();
    EXPECT_FALSE(panel().canBecomeKey());
}

}
