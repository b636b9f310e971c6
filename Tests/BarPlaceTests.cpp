// Where bars and popups lie on screens of all kinds, and what a change of screens leaves alone.
#include "Quorvel/Views/ThumbnailPopup.h"
#include "Tests/Support/BarFixture.h"

namespace quorvel::test {

namespace {

struct BarPlaceTest : BarFixture {
    WindowID inbox = desktop.open(desktop.launch({.name = "Mail"}), {.title = "Inbox"});

    BarPlaceTest() { start(); }
};

}

// Faults: on the smallest screens the popup begins above the screen, or the bar ends there.
TEST_F(BarPlaceTest, theSmallestScreensHoldTheBarAndItsPopup)
{
    for (Size size : {Size{200, 100}, Size{100, 50}}) {
        Rect screen = Rect::from({}, size);
        auto displays = desktop.model().displays;
        displays.front().frame = screen;
        displays.front().visibleFrame = {};
        desktop.setDisplays(displays);
        runtime->userSettings().setBarSize(BarSize::xxl);
        settle();
        EXPECT_TRUE(screen.contains(panel().frame())) << size.height;
        for (std::size_t count : {1u, 5u}) {
            auto layout = ThumbnailPopupLayout::of({count}, panel().frame(), screen, false);
            EXPECT_TRUE(screen.contains(layout.frame)) << count << " on " << size.height;
        }
    }
}

// Fault: a panel along a whole side of the screen lies over the menu button.
TEST_F(BarPlaceTest, panelsAtTheSidesCoverNothing)
{
    auto displays = desktop.model().displays;
    auto screen = displays.front().frame;
    auto button = content().menuButtonFrame();
    displays.front().visibleFrame = {screen.x + 60, screen.y, screen.width - 100, screen.height};
    desktop.setDisplays(displays);
    desktop.drain();
    EXPECT_EQ(content().menuButtonFrame(), button.translated(60, 0));
    EXPECT_EQ(content().showDesktopButtonFrame().maxX(), screen.width - 40);
    EXPECT_EQ(panel().frame().width, screen.width);
}

// Faults: the Dock covers the bar, or its rectangle is replaced by one that it does not heed; the
// strip that the bar itself has asked for lifts it, and again at each change.
TEST_F(BarPlaceTest, aDockThatIsToBeSeenHasTheBottomEdge)
{
    constexpr double kHeight = 70;
    auto report = [this](double room) {
        auto displays = desktop.model().displays;
        displays.front().visibleFrame = {0, room, 1440, 875 - room};
        desktop.setDisplays(displays);
        settle();
    };
    auto& dock = desktop.dock();
    auto isRegistered = [this] { return !desktop.windowServer().dockRectangles().empty(); };
    desktop.place(inbox, {0, 0, 800, 900});
    report(kHeight);
    EXPECT_EQ(panel().frame().y, kHeight);
    EXPECT_FALSE(isRegistered());
    EXPECT_EQ(desktop.window(inbox).frame.maxY(), 900 - panel().frame().maxY() - 1);

    dock.setAutoHideEnabled(true);
    report(0);
    EXPECT_EQ(panel().frame().y, 0);
    EXPECT_TRUE(isRegistered());
    dock.setAutoHideEnabled(false);
    report(panel().frame().height);
    EXPECT_EQ(panel().frame().y, 0) << "its own strip";
    report(kHeight);
    EXPECT_EQ(panel().frame().y, kHeight);
    dock.setAtBottom(false);
    report(kHeight);
    EXPECT_EQ(panel().frame().y, 0) << "what another keeps free is no Dock";
}

// Fault: the walk ends when a monitor comes or goes that is not the walked one.
TEST_F(BarPlaceTest, aWalkGoesOnWhenAnotherMonitorChanges)
{
    auto own = desktop.model().displays.front();
    auto other = own.at({-own.frame.width, 0});
    other.number = DisplayNumber{2};
    other.identifier = "OTHER";
    other.spaces = {{SpaceID{11}}};
    other.current = SpaceID{11};
    panel().takeKeyboard();
    panel().pressKey(KeyCode::right);
    for (auto displays : {std::vector{other, own}, std::vector{own}, std::vector{own, other}}) {
        desktop.setDisplays(displays);
        settle();
        ASSERT_TRUE(panel().hasKeyboard());
        EXPECT_NE(bar().keyFocusedView(), nullptr);
    }
}

TEST(ThumbnailPopupLayout, isWhollyOnTheScreenWhateverTheCountAndThePlace)
{
    constexpr Rect screen{1000, 0, 800, 600};
    for (bool isRightToLeft : {false, true}) {
        for (double x : {1000.0, 1400.0, 1760.0}) {
            for (std::size_t count : {1u, 2u, 5u, 40u}) {
                auto layout
                    = ThumbnailPopupLayout::of({count}, {x, 0, 40, 36}, screen, isRightToLeft);
                EXPECT_TRUE(screen.contains(layout.frame)) << count << " at " << x;
                EXPECT_EQ(layout.cards.size() + layout.hiddenCount, count);
                for (auto& card : layout.cards)
                    EXPECT_TRUE(Rect::from({}, layout.frame.size()).contains(card));
                double tip = layout.frame.x + layout.arrowX;
                EXPECT_NEAR(tip, x + 20, 22) << "the arrow is at the chip";
            }
        }
    }
}

}
