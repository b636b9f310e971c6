// A row with more chips than fit: what scrolls it, what holds it still, and what its ends tell.
#include "Quorvel/Views/Kit/Palette.h"
#include "Quorvel/Views/ScrollArrow.h"
#include "Quorvel/Views/Tooltips.h"
#include "Tests/Support/BarFixture.h"

namespace quorvel::test {

namespace {

struct BarScrollTest : ThreeWindows {
    std::vector<WindowID> many = openMany();

    /// Longer than the row takes to follow.
    void rest() { desktop.advance(seconds(1)); }
    bool isWhole(WindowID window)
    {
        return chipFrame(window)->width == ChipView::iconWidth(BarMetrics::of(BarSize::medium));
    }
    bool isSeen(WindowID window) { return !chipFrame(window)->isEmpty(); }
    /// As when the user goes there by other means than the bar.
    void focus(WindowID window)
    {
        desktop.focus(window);
        desktop.activate(desktop.window(window).pid);
        rest();
    }
    Point hand = middleOf(many[8]);
    /// The row stays where it is while another window gets the focus.
    void expectHeld(WindowID wanted, const char* by)
    {
        SCOPED_TRACE(by);
        auto place = chipFrame(many[8]);
        focus(wanted);
        EXPECT_EQ(chipFrame(many[8]), place);
        EXPECT_FALSE(isSeen(wanted));
    }
    void expectFollowed(WindowID wanted)
    {
        rest();
        EXPECT_TRUE(isWhole(wanted)) << raw(wanted);
        focus(inbox);
    }
    void changeAppearance(const std::function<void(Appearance&)>& change)
    {
        auto appearance = desktop.program().appearance().value();
        change(appearance);
        desktop.program().setAppearance(appearance);
        rest();
    }
    /// The identifier and the name of each arrow that tells of something.
    std::map<std::string, std::string> tellingArrows()
    {
        std::map<std::string, std::string> arrows;
        for (auto* element : panel().elements()) {
            if (element->accessibleID().starts_with("scroll-"))
                arrows[element->accessibleID()] = element->accessibleState().name;
        }
        return arrows;
    }
};

}

// Faults: sixty windows overlap, or lie where nobody can reach them, or below an arrow.
TEST_F(BarScrollTest, moreChipsThanFitScroll)
{
    auto expectChipsBesideArrows = [&](std::size_t arrows) {
        auto symbols = panel().render().drawn<DrawnSymbol>();
        std::erase_if(symbols, [](auto& symbol) {
            return symbol.symbol != Symbol::chevronLeft && symbol.symbol != Symbol::chevronRight;
        });
        EXPECT_THAT(symbols, SizeIs(arrows));
        for (auto& symbol : symbols) {
            for (auto& icon : panel().render().drawn<DrawnImage>())
                EXPECT_FALSE(icon.visible.intersects(symbol.rect));
            for (auto& [id, frame] : content().chipFrames())
                EXPECT_FALSE(frame.intersects(symbol.rect));
        }
    };
    expectChipsBesideArrows(1);
    EXPECT_TRUE(chipFrame(many.back())->isEmpty());
    auto width = chipFrame(inbox)->width;
    EXPECT_EQ(width, ChipView::iconWidth(BarMetrics::of(BarSize::medium)));
    auto second = chipFrame(draft)->x;
    panel().scrollSideways(middleOf(inbox), -1);
    expectChipsBesideArrows(2);
    EXPECT_EQ(chipFrame(notes)->x, std::max(second, chipFrame(draft)->maxX()))
        << "a notch of the wheel is a chip";
    for (int i = 0; i < 100; ++i)
        panel().scrollSideways(middleOf(inbox), -1);
    EXPECT_EQ(chipFrame(many.back())->width, width);
    EXPECT_TRUE(chipFrame(inbox)->isEmpty());
    EXPECT_TRUE(desktop.model().isCurrent(SpaceID{1}));

    // A chip that is held at the end of the row comes to what is beyond.
    auto row = chipFrame(many.back())->maxX();
    auto from = middleOf(many.back());
    panel().press(from);
    panel().movePointer({from.x - 40, from.y});
    panel().movePointer({from.x - row, from.y});
    desktop.advance(seconds(20));
    panel().movePointer({from.x + 60, from.y});
    int outside = 0;
    for (auto& icon : panel().render().drawn<DrawnImage>())
        outside += icon.visible.maxX() > row ? 1 : 0;
    EXPECT_EQ(outside, 1) << "the dragged one alone leaves the row";
    panel().movePointer({from.x - row, from.y});
    panel().release({from.x - row, from.y});
    desktop.advance(seconds(0.3));
    EXPECT_EQ(chipIDs().front(), displayItemID(many.back()));
    EXPECT_FALSE(chipFrame(inbox)->isEmpty());
}

// Faults: an upright notch within a sideways swipe, which X11 reports in notches too, switches the
// space; a sideways one within an upright turn scrolls the row; a turn after a pause is still taken
// for the swipe before.
TEST_F(BarScrollTest, ofNotchesWithoutAPauseTheLargerAxisDecides)
{
    auto notch = [this](double x, double y) {
        panel().scroll({.location = hand, .deltaX = x, .deltaY = y});
        desktop.advance(seconds(0.1));
        return chipFrame(many[20]);
    };
    auto current = [this] { return desktop.model().displays.front().current; };
    auto place = notch(0, 1); // there is no space beyond
    notch(0, 1);
    EXPECT_EQ(notch(-1, 0), place);
    desktop.advance(ScrollGesture::kPause);
    EXPECT_NE(notch(-1, 0), place);
    notch(-1, 0);
    notch(0, -1);
    notch(-1, 0);
    notch(0, -1);
    notch(0, -1);
    EXPECT_EQ(current(), SpaceID{1});
    desktop.advance(ScrollGesture::kPause);
    notch(0, -1);
    EXPECT_EQ(current(), SpaceID{2});
}

// Faults: in a row that is scrolled to its end the chips move when the last one closes; an arrow
// goes from under the pointer, so that the next click meets a chip.
TEST_F(BarScrollTest, aScrolledRowHoldsStillUnderThePointer)
{
    auto end = Point{middleOf(notes).x, 10};
    for (auto& [id, frame] : content().chipFrames())
        end.x = std::max(end.x, frame.maxX() + 5);
    for (int i = 0; i < 10; ++i) {
        panel().click(end);
        desktop.advance(seconds(0.5));
    }
    EXPECT_FALSE(chipFrame(many.back())->isEmpty()) << "the arrow leads to the end";
    EXPECT_FALSE(chip(many.back())->isFocused);

    panel().movePointer(middleOf(many[50]));
    auto place = chipFrame(many[50]);
    desktop.close(many.back());
    desktop.close(many[58]);
    settle();
    EXPECT_EQ(chipFrame(many[50]), place);
    auto opened = desktop.open(editor, {.title = "New"});
    settle();
    EXPECT_EQ(chipFrame(many[50]), place);
    EXPECT_GT(chipFrame(opened)->x, chipFrame(many[57])->x);
    leave();
    EXPECT_NE(chipFrame(many[50]), place);
}

// Faults: whoever changes windows by the keyboard does not find the chip; the row jumps although
// motion is to be reduced and glides when it is not; it stops short, below an arrow or where the
// chip was before others went; a bar that nobody sees works all the same; a timer stays.
TEST_F(BarScrollTest, theChipOfTheFocusedWindowComesIntoSight)
{
    auto timers = desktop.dispatch().pendingTimers();
    desktop.focus(many[50]);
    desktop.activate(editor);
    desktop.advance(seconds(0.05));
    auto onItsWay = chipFrame(many[20]);
    rest();
    EXPECT_NE(chipFrame(many[20]), onItsWay);
    EXPECT_TRUE(isWhole(many[50]));
    focus(many[0]);
    EXPECT_TRUE(isWhole(many[0]));
    auto place = chipFrame(many[0]);
    focus(many[3]);
    EXPECT_EQ(chipFrame(many[0]), place) << "it was in sight";

    // Others go while the row is on its way, or it gets another width.
    desktop.focus(many[40]);
    desktop.advance(seconds(0.05));
    for (int i = 5; i < 25; ++i)
        desktop.close(many[std::size_t(i)]);
    settle();
    EXPECT_TRUE(isWhole(many[40]));
    auto displays = desktop.model().displays;
    displays.front().visibleFrame.x += 300;
    displays.front().visibleFrame.width -= 300;
    desktop.setDisplays(displays);
    rest();
    EXPECT_TRUE(isWhole(many[40]));

    changeAppearance([](auto& appearance) { appearance.isRightToLeft = true; });
    focus(many[59]);
    EXPECT_TRUE(isWhole(many[59]));
    changeAppearance([](auto& appearance) { appearance.reduceMotion = true; });
    desktop.focus(many[0]);
    desktop.drain();
    EXPECT_TRUE(isWhole(many[0]));
    settle();
    EXPECT_EQ(desktop.dispatch().pendingTimers(), timers);
}

// Fault: each popup or menu that closes wakes the machine once more for a chip that is in sight.
TEST_F(BarScrollTest, nothingIsWaitedForWhereNothingHasToScroll)
{
    ASSERT_TRUE(isWhole(inbox));
    auto timers = desktop.dispatch().pendingTimers();
    hoverUntilShown(draft);
    leave();
    desktop.advance(seconds(0.2));
    ASSERT_FALSE(popup());
    EXPECT_EQ(desktop.dispatch().pendingTimers(), timers);

    panel().press(hand, PointerButton::secondary);
    panel().release(hand, PointerButton::secondary);
    desktop.surfaces().menu()->pressKey(KeyCode::escape);
    leave();
    EXPECT_EQ(desktop.dispatch().pendingTimers(), timers);
}

// Faults: a chip slides away under the pointer, the menu or the keyboard that is on it; what was
// put off is forgotten, or done after the user has gone elsewhere by hand.
TEST_F(BarScrollTest, theRowDoesNotMoveByItselfWhileItIsInUse)
{
    panel().movePointer(hand);
    expectHeld(many[59], "pointer");
    panel().press(hand);
    panel().movePointer(hand.translated(0, -40));
    expectHeld(many[58], "drag");
    panel().release(hand.translated(0, -40));
    leave();
    expectFollowed(many[58]);

    panel().press(hand, PointerButton::secondary);
    leave();
    expectHeld(many[57], "menu");
    desktop.surfaces().closeMenu();
    expectFollowed(many[57]);
    panel().takeKeyboard();
    expectHeld(many[56], "keyboard");
    panel().pressKey(KeyCode::escape);
    expectFollowed(many[56]);
    panel().dragFiles(DropAction::moved, hand, {"/a"});
    expectHeld(many[55], "files");
    panel().dragFiles(DropAction::moved, {chipFrame(many[8])->maxX() + 1, hand.y}, {"/a"});
    expectHeld(many[54], "files between two chips");
    panel().dragFiles(DropAction::exited, {}, {});
    expectFollowed(many[54]);
    desktop.activateSpace(SpaceID{2});
    focus(many[53]);
    EXPECT_FALSE(isSeen(many[53])) << "nobody sees it";
    desktop.activateSpace(SpaceID{1});
    expectFollowed(many[53]);
}

// Faults: the chips go on moving when the pointer comes to them; the row undoes what the user has
// scrolled.
TEST_F(BarScrollTest, theRowYieldsToTheHand)
{
    desktop.focus(many[52]);
    desktop.activate(editor);
    desktop.advance(seconds(0.1));
    panel().movePointer(hand);
    auto place = chipFrame(many[20]);
    rest();
    EXPECT_EQ(chipFrame(many[20]), place);
    leave();
    expectFollowed(many[52]);

    panel().movePointer(hand);
    focus(many[51]);
    panel().scrollSideways(hand, -1);
    leave();
    rest();
    EXPECT_FALSE(isSeen(many[51])) << "the user has gone elsewhere";
}

// Faults: who asks for attention beyond an end is not found by eye or ear, or is told of at the
// wrong end, or still when in sight or content; the mark cannot be told from the ground; an arrow
// that has no name for a pointer that rests on it.
TEST_F(BarScrollTest, anArrowTellsWhatWantsAttentionBeyondIt)
{
    auto tells = [](const char* arrow) {
        return ElementsAre(testing::Pair(arrow, "A window out of sight wants attention"));
    };
    runtime.reset();
    desktop.launchServices().setAvailable(true);
    start();
    auto end = Point{0, 10};
    for (auto& [id, frame] : content().chipFrames())
        end.x = std::max(end.x, frame.maxX() + ScrollArrow::kWidth / 2);
    EXPECT_THAT(tellingArrows(), IsEmpty());
    panel().movePointer(end);
    desktop.advance(Tooltips::kShowDelay);
    ASSERT_TRUE(popup());
    EXPECT_THAT(popup()->render().texts(), ElementsAre("Scroll"));
    leave();
    desktop.launchServices().requests = {{many[50], "editor"}};
    settle();
    EXPECT_THAT(tellingArrows(), tells("scroll-right"));
    for (bool isDark : {false, true}) {
        changeAppearance([&](auto& appearance) { appearance.isDark = isDark; });
        auto drawn = panel().render();
        auto palette = Palette::of(desktop.program().appearance().value());
        Color face = palette.ground;
        for (auto& fill : drawn.drawn<DrawnFill>())
            face = fill.radius > 0 && fill.rect.contains(end) ? fill.color : face;
        EXPECT_GE(contrast(face, palette.ground), palette.leastContrast);
        for (auto& symbol : drawn.drawn<DrawnSymbol>()) {
            if (symbol.rect.contains(end)) {
                EXPECT_GE(contrast(face, symbol.color), palette.leastContrast);
            }
        }
    }
    for (int i = 0; i < 10 && !isSeen(many[50]); ++i) {
        EXPECT_THAT(tellingArrows(), tells("scroll-right"));
        panel().click(end);
        rest();
    }
    EXPECT_TRUE(isSeen(many[50]));
    EXPECT_THAT(tellingArrows(), IsEmpty());
    for (int i = 0; i < 10; ++i)
        panel().scrollSideways(end, -10);
    desktop.launchServices().requests = {{draft, "mail"}};
    settle();
    EXPECT_THAT(tellingArrows(), tells("scroll-left"));
    changeAppearance([](auto& appearance) { appearance.isRightToLeft = true; });
    EXPECT_THAT(tellingArrows(), tells("scroll-right"));
    desktop.launchServices().requests = {};
    settle();
    EXPECT_THAT(tellingArrows(), IsEmpty());
}

}
