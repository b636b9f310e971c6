#include "Quorvel/Skylight/SpaceWindows.h"
#include "Tests/MacSystem/Support/MacFixture.h"

namespace quorvel::test {

namespace {

struct MacSpacesTest : MacFixture { };

}

TEST_F(MacSpacesTest, spacesKeepTheirPlacesWhateverTheirEntriesLack)
{
    mac.answer("CopyManagedDisplaySpaces",
        array({dictionary({{"Display Identifier", text("A")},
                   {"Current Space", dictionary({{"ManagedSpaceID", number(4)}})},
                   {"Spaces",
                       array({dictionary({{"id64", number(3)}, {"ManagedSpaceID", number(9)},
                                  {"type", number(4)}}),
                           dictionary({{"ManagedSpaceID", number(4)}}), null(),
                           dictionary({{"id64", text("5")}, {"ManagedSpaceID", truth(true)}}),
                           dictionary({{"id64", number(-1)}, {"type", text("4")}})})}}),
            text("no display"),
            dictionary({{"Display Identifier", number(77)}, {"Spaces", dictionary({})},
                {"Current Space", number(3)}}),
            dictionary({{"Display Identifier", truth(true)}})}));

    const auto displays = makeWindowServer().managedDisplaySpaces();

    ASSERT_TRUE(displays);
    const auto said = [](const ManagedSpace& space) {
        return std::tuple{space.id64, space.managedSpaceID, space.type};
    };
    using Said = decltype(said({}));
    using Identifiers = std::vector<decltype(ManagedDisplay::identifier)>;
    Identifiers identifiers;
    std::vector<Said> spaces;
    for (const auto& display : *displays) {
        identifiers.push_back(display.identifier);
        std::ranges::transform(display.spaces, std::back_inserter(spaces), said);
    }
    EXPECT_EQ(identifiers,
        (Identifiers{std::string{"A"}, std::monostate{}, std::int64_t{77}, std::monostate{}}));
    EXPECT_THAT(spaces,
        ElementsAre(Said{3, 9, 4}, Said{std::nullopt, 4, std::nullopt}, Said{}, Said{},
            Said{~0ULL, {}, {}}));
    EXPECT_EQ(said(displays->front().currentSpace.value()), (Said{std::nullopt, 4, std::nullopt}));
    EXPECT_FALSE(displays->at(2).currentSpace);
}

TEST_F(MacSpacesTest, anAnswerThatIsNoListIsAFailureAndForeignEntriesAreLeftOut)
{
    const auto server = makeWindowServer();
    for (const auto& wrong : {Value{}, null(), dictionary({}), number(3)}) {
        for (const auto* call :
            {"CopyManagedDisplaySpaces", "CopySpacesForWindows", "CopyWindowsWithOptionsAndTags"})
            mac.answer(call, wrong);
        EXPECT_EQ(server.managedDisplaySpaces().has_value(), false);
        EXPECT_EQ(server.spacesOfWindows(kAllSpacesMask, {WindowID{1}}), std::nullopt);
        EXPECT_FALSE(server.windowsOfSpaces({SpaceID{1}}, 2));
    }

    const auto mixed = array(
        {number(8), null(), truth(true), text("9"), number(std::int64_t{1} << 40), number(10)});
    mac.answer("CopySpacesForWindows", mixed);
    mac.answer("CopyWindowsWithOptionsAndTags", array({truth(true), number(11), text("12")}));
    EXPECT_THAT(*server.spacesOfWindows(kAllSpacesMask, {WindowID{1}}),
        ElementsAre(SpaceID{8}, SpaceID{1ULL << 40}, SpaceID{10}));
    EXPECT_THAT(server.windowsOfSpaces({SpaceID{1}}, 2), Optional(ElementsAre(WindowID{11})));
}

TEST_F(MacSpacesTest, callsThatTheSystemLacksAnswerWithNothing)
{
    const auto window = desktop.open(desktop.launch());
    MacWindowServer server{PrivateSymbols{}, MacWindowServer::DisplaySpaces::shared};

    EXPECT_FALSE(server.managedDisplaySpaces().has_value());
    EXPECT_FALSE(server.windowsOfSpaces({SpaceID{1}}, 2));
    EXPECT_FALSE(server.spacesOfWindows(kAllSpacesMask, {window}).has_value());
    EXPECT_EQ(server.activeSpace(), SpaceID{});
    server.addWindowsToSpaces({window}, {SpaceID{2}});
    server.removeWindowsFromSpaces({window}, {SpaceID{1}});
    EXPECT_FALSE(server.setEdgeReservation(SpaceID{1}, ScreenEdge::bottom, 40));
    EXPECT_FALSE(server.setDockRectangle({DisplayNumber{1}, {0, 864, 1440, 36}}));
    EXPECT_FALSE(server.symbolicHotKey(118));
    EXPECT_FALSE(server.isSymbolicHotKeyEnabled(118));
    EXPECT_FALSE(server.setSymbolicHotKeyEnabled(118, true));
    EXPECT_FALSE(server.moveOwnWindow(window, SpaceID{2}));
    EXPECT_THAT(windowsOf(server), SizeIs(1)) << "the list itself is public";
    EXPECT_THAT(desktop.window(window).spaces, ElementsAre(SpaceID{1}));

    SpaceWindows{server, desktop.displays()}.moveWindowExclusively(window, SpaceID{2});
    EXPECT_THAT(desktop.window(window).spaces, ElementsAre(SpaceID{1}));
}

TEST_F(MacSpacesTest, aPrivateCallIsFoundUnderItsOlderNameWhereSkyLightHasItNot)
{
    const auto window = desktop.open(desktop.launch());
    mac.removeSymbol("CGSMainConnectionID");
    EXPECT_TRUE(makeWindowServer().managedDisplaySpaces());
    mac.removeSymbol("SLSMainConnectionID");
    EXPECT_FALSE(makeWindowServer().managedDisplaySpaces()) << "not connected";
    mac.removeSymbol("SLSMoveWindowsToManagedSpace");
    EXPECT_TRUE(makeWindowServer().moveOwnWindow(window, SpaceID{2}));
    EXPECT_THAT(desktop.window(window).spaces, ElementsAre(SpaceID{2}));
    mac.removeSymbol("CGSMoveWindowsToManagedSpace");
    EXPECT_FALSE(makeWindowServer().moveOwnWindow(window, SpaceID{3}));

    mac.hasSkyLight = false;
    auto server = makeWindowServer();
    EXPECT_EQ(server.activeSpace(), SpaceID{1});
    server.setEdgeReservation(SpaceID{3}, ScreenEdge::bottom, 40);
    EXPECT_EQ(desktop.windowServer().edgeReservations().at(SpaceID{3}), 40);
}

TEST_F(MacSpacesTest, theKeysOfADesktopAreReadEnabledAndPostedAsTheUserWouldPressThem)
{
    constexpr std::uint64_t control = 0x40000;
    desktop.windowServer().setDesktopHotKey(
        119, {.keys = {19, control}, .isEnabled = false}, SpaceID{2});
    desktop.windowServer().setDesktopHotKey(
        120, {.keys = {0xFFFF, 0}, .isEnabled = false, .canBeEnabled = false}, SpaceID{3});
    auto server = makeWindowServer();

    EXPECT_EQ(server.symbolicHotKey(119), (SymbolicHotKey{19, control}));
    EXPECT_EQ(server.symbolicHotKey(120), std::nullopt) << "an action without keys";
    EXPECT_EQ(server.symbolicHotKey(121), std::nullopt);
    EXPECT_FALSE(server.isSymbolicHotKeyEnabled(119));
    EXPECT_TRUE(server.setSymbolicHotKeyEnabled(119, true));
    EXPECT_TRUE(server.isSymbolicHotKeyEnabled(119));
    EXPECT_FALSE(server.setSymbolicHotKeyEnabled(120, true));

    server.postKeyEvent(19, KeyAction::down, control);
    server.postKeyEvent(19, KeyAction::up, 0);
    EXPECT_THAT(desktop.windowServer().postedKeys(),
        ElementsAre(FakeWindowServer::PostedKey{19, KeyAction::down, control},
            FakeWindowServer::PostedKey{19, KeyAction::up, 0}));
    EXPECT_EQ(server.activeSpace(), SpaceID{2});

    const std::vector<std::pair<PointerPost, Point>> hand{{PointerPost::moved, {1, 2}},
        {PointerPost::pressed, {1, 2}}, {PointerPost::dragged, {3, 4}},
        {PointerPost::released, {5, 6}}};
    for (const auto& [post, at] : hand)
        server.postPointerEvent(post, at);
    EXPECT_EQ(desktop.windowServer().postedPointer(), hand);
}

TEST_F(MacSpacesTest, aMovedWindowIsOnItsNewSpaceBeforeItLeavesTheOld)
{
    const auto window = desktop.open(desktop.launch(), {.spaces = {SpaceID{1}, SpaceID{2}}});
    auto server = makeWindowServer();
    const SpaceWindows spaces{server, desktop.displays()};
    using Change = FakeWindowServer::SpaceChange;

    spaces.moveWindowExclusively(window, SpaceID{3});

    EXPECT_THAT(*server.spacesOfWindows(kAllSpacesMask, {window}), ElementsAre(SpaceID{3}));
    EXPECT_THAT(
        server.windowsOfSpaces({SpaceID{3}}, kSpaceWindowOptions), Optional(ElementsAre(window)));
    ASSERT_FALSE(desktop.windowServer().moves().empty());
    EXPECT_EQ(desktop.windowServer().moves().front(),
        (FakeWindowServer::Moved{Change::add, window, SpaceID{3}}));
}

// Faults: what the server did not take is booked; the Dock's own place is lost; one of the two
// calls is made without the other.
TEST_F(MacSpacesTest, theDocksRectangleIsTheLastOnesThatWasTakenAndTheDocksAgainAfterwards)
{
    const SimulatedMac::DockRect docks = mac.dockRect;
    const Rect left{0, 864, 1440, 36};
    const Rect right{1440, 864, 1000, 36};
    auto server = makeWindowServer();

    EXPECT_TRUE(server.setDockRectangle({DisplayNumber{1}, left}));
    EXPECT_EQ(mac.dockRect, (SimulatedMac::DockRect{left, docks.reason, 2}));
    EXPECT_TRUE(server.setDockRectangle({DisplayNumber{2}, right}));
    EXPECT_EQ(mac.dockRect.rect, right);
    server.clearDockRectangle(DisplayNumber{2});
    EXPECT_EQ(mac.dockRect, (SimulatedMac::DockRect{left, docks.reason, 2}));
    server.clearDockRectangle(DisplayNumber{1});
    EXPECT_EQ(mac.dockRect, docks);

    // Started anew meanwhile.
    const SimulatedMac::DockRect anew{{0, 800, 1440, 100}, docks.reason, 2};
    EXPECT_TRUE(server.setDockRectangle({DisplayNumber{1}, left}));
    mac.dockRect = anew;
    server.clearDockRectangle(DisplayNumber{1});
    EXPECT_EQ(mac.dockRect, anew);
    mac.dockRect = docks;

    mac.ignoresDockRect = true;
    EXPECT_FALSE(server.setDockRectangle({DisplayNumber{1}, left}));
    mac.ignoresDockRect = false;
    server.clearDockRectangle(DisplayNumber{1});
    mac.removeSymbol("SLSGetDockRectWithOrientation");
    EXPECT_FALSE(makeWindowServer().setDockRectangle({DisplayNumber{1}, left}));
    EXPECT_EQ(mac.dockRect, docks);
}

TEST_F(MacSpacesTest, displaysThatCannotBeReadAreAbsent)
{
    MacDisplays displays;
    EXPECT_EQ(displays.identifier(DisplayNumber{1}), "37D8832A-2D66-02CA-B9F7-8F30A301B230");
    EXPECT_EQ(displays.displayAt({-10, 10}), std::nullopt);
    desktop.model().pointer = {3, 4};
    EXPECT_EQ(displays.pointerLocation(), (Point{3, 4}));

    mac.failsDisplayCalls = true;
    mac.isPointerReadable = false;
    EXPECT_THAT(displays.activeDisplays(8), IsEmpty());
    EXPECT_EQ(displays.displayAt({10, 10}), std::nullopt);
    EXPECT_EQ(displays.pointerLocation(), Point{});
}

}
