// When the views of the bar say what they are, and where, through real pointer events.
#include "Quorvel/Views/Tooltips.h"

#include "Tests/Support/BarFixture.h"

namespace quorvel::test {

namespace {

struct TooltipTest : ThreeWindows {
    TooltipTest()
    {
        pin("player");
        pin("browser");
        settle();
    }
    /// In one line; empty while there is none.
    std::string shown()
    {
        std::string text;
        for (auto& line : popup() ? popup()->render().texts() : std::vector<std::string>{})
            text += (text.empty() ? "" : " ") + line;
        return text;
    }
    void pointAt(const Rect& view) { panel().movePointer(view.centre()); }
    Rect pinFrame(std::size_t index) { return content().pinFrames()[index].second; }
    void rest() { desktop.advance(Tooltips::kShowDelay); }
};

}

// Faults: nothing says what a symbol means; a pointer that passes leaves a trail of tooltips; each
// next one has to be waited for; one that stays after the pointer has gone.
TEST_F(TooltipTest, nameWhatThePointerRestsOn)
{
    auto idle = desktop.dispatch().pendingTimers();
    pointAt(pinFrame(0));
    desktop.advance(seconds(0.2));
    panel().movePointer(pinFrame(0).centre().translated(2, 0));
    desktop.advance(seconds(0.2));
    EXPECT_EQ(shown(), "") << "it moved";
    desktop.advance(seconds(0.05));
    EXPECT_EQ(shown(), "player");
    pointAt(pinFrame(1));
    EXPECT_EQ(shown(), "browser");

    pointAt(content().showDesktopButtonFrame());
    EXPECT_EQ(shown(), "Show Desktop");
    pointAt(content().menuButtonFrame());
    EXPECT_EQ(shown(), "Applications");
    pointAt(content().spaceListButtonFrame());
    EXPECT_EQ(shown(), "Desktops");
    pointAt(content().spaceCellFrames()[1].second);
    EXPECT_EQ(shown(), "Desktop 2");

    leave();
    EXPECT_EQ(shown(), "");
    EXPECT_EQ(desktop.dispatch().pendingTimers(), idle);
    desktop.advance(seconds(1));
    pointAt(pinFrame(0));
    EXPECT_EQ(shown(), "") << "the first of another row";
}

// Faults: a tooltip that lies on what is pointed at, or beyond the screen.
TEST_F(TooltipTest, lieAboveTheBarAndOnTheScreen)
{
    auto screen = desktop.displays().screens().front().frame;
    for (bool isRightToLeft : {false, true}) {
        desktop.program().setAppearance({.isRightToLeft = isRightToLeft});
        settle();
        for (auto& frame :
            {content().menuButtonFrame(), content().showDesktopButtonFrame(), pinFrame(0)}) {
            pointAt(frame);
            rest();
            ASSERT_TRUE(popup());
            EXPECT_GE(popup()->frame().y, panel().frame().maxY());
            EXPECT_TRUE(screen.contains(popup()->frame()));
            EXPECT_LT(std::abs(popup()->frame().centre().x - frame.centre().x), 60);
        }
        leave();
        desktop.advance(seconds(1));
    }
}

// Faults: the end of a title is nowhere to be read where there are no previews; a preview that
// comes all the same; a second way to read what can be read.
TEST_F(TooltipTest, ofChipsSayATitleThatIsCutWhereThereIsNoPreview)
{
    std::string title = "A rather long title of a letter that was begun on a Monday in spring";
    desktop.retitle(draft, title);
    settle();
    panel().movePointer(middleOf(draft));
    desktop.advance(seconds(1));
    EXPECT_TRUE(content().thumbnailPopup());
    runtime->userSettings().setShowsWindowPreviews(false);
    desktop.drain();
    EXPECT_FALSE(popup());
    leave();
    desktop.advance(seconds(1));

    panel().movePointer(middleOf(draft));
    rest();
    EXPECT_EQ(shown(), title);
    panel().movePointer(middleOf(notes));
    desktop.advance(seconds(1));
    EXPECT_EQ(shown(), "");
    runtime->userSettings().setShowChipTitles(false);
    settle();
    leave();
    panel().movePointer(middleOf(notes));
    rest();
    EXPECT_EQ(shown(), "Notes") << "which is cut wholly";
    panel().takeKeyboard();
    panel().pressKey(KeyCode::up);
    EXPECT_FALSE(content().thumbnailPopup());
    panel().releaseKeyboard();
}

// Faults: after a switch of spaces the name of the cell comes back over what the user looks at; the
// next cell, or the same one later, says nothing either.
TEST_F(TooltipTest, ofASpaceCellStaysAwayAfterTheSwitch)
{
    auto cell = [this](std::size_t index, SpaceID space) {
        return content(space).spaceCellFrames()[index].second.centre();
    };
    // What the bar of a space does once it is shown, of which some systems tell late.
    auto comeTo = [&](SpaceID space, bool isToldBefore) {
        auto at = cell(raw(space) - 1, current());
        panel(current()).movePointer(at);
        rest();
        EXPECT_EQ(shown(), "Desktop " + std::to_string(raw(space)));
        panel(current()).click(at);
        panel(current()).leave();
        if (isToldBefore)
            panel(space).movePointer(at);
        desktop.activateSpace(space);
        settle();
        panel(space).movePointer(at);
        desktop.advance(seconds(2));
    };
    desktop.activateSpace(SpaceID{2});
    settle();
    desktop.activateSpace(SpaceID{1});
    settle();
    for (auto [space, isToldBefore] :
        {std::pair{SpaceID{2}, false}, {SpaceID{3}, false}, {SpaceID{1}, true}}) {
        comeTo(space, isToldBefore);
        EXPECT_EQ(shown(), "") << raw(space);
        panel(space).movePointer(cell(raw(space) % 3, space));
        rest();
        EXPECT_NE(shown(), "") << raw(space);
        panel(space).leave();
        desktop.advance(seconds(1));
        panel(space).movePointer(cell(raw(space) - 1, space));
        rest();
        EXPECT_EQ(shown(), "Desktop " + std::to_string(raw(space)));
        panel(space).leave();
        desktop.advance(seconds(1));
    }
}

// Faults: one that comes back under a click, lies beside a menu, or over what is dragged; the words
// read out twice.
TEST_F(TooltipTest, goWithWhateverTheUserDoes)
{
    auto appears = [&] {
        leave();
        desktop.advance(seconds(1));
        pointAt(pinFrame(1));
        rest();
        return shown() == "browser";
    };
    auto staysAway = [&] {
        bool isGone = shown().empty();
        desktop.advance(seconds(2));
        return isGone && shown().empty();
    };
    ASSERT_TRUE(appears());
    EXPECT_FALSE(popup()->accessibleRoot());
    panel().press(pinFrame(1).centre());
    EXPECT_TRUE(staysAway());
    panel().movePointer({pinFrame(1).centre().x, -40});
    panel().movePointer(pinFrame(1).centre());
    EXPECT_TRUE(staysAway()) << "the button is still down";
    panel().releaseUnheard(PointerButton::primary);
    panel().losePointer();

    ASSERT_TRUE(appears());
    panel().press(pinFrame(1).centre(), PointerButton::secondary);
    EXPECT_TRUE(staysAway());
    desktop.surfaces().menu()->pressKey(KeyCode::escape);
    panel().release(pinFrame(1).centre(), PointerButton::secondary);

    ASSERT_TRUE(appears());
    panel().takeKeyboard();
    panel().pressKey(KeyCode::right);
    EXPECT_TRUE(staysAway());
    panel().releaseKeyboard();

    ASSERT_TRUE(appears());
    panel().scrollSideways(pinFrame(1).centre(), -1);
    EXPECT_TRUE(staysAway());

    ASSERT_TRUE(appears());
    manager().pinStore().setPin("browser", PinDestination::bar, false);
    leave();
    EXPECT_TRUE(staysAway());
}

}
