// What the cards of a popup show and do, through real pointer and key events.
#include "Quorvel/Views/ThumbnailPopup.h"

#include "Quorvel/Core/ThumbnailService.h"
#include "Quorvel/Platform/Translation.h"
#include "Quorvel/Views/Kit/Palette.h"
#include "Quorvel/Views/PeekFading.h"
#include "Tests/Support/BarFixture.h"

namespace quorvel::test {

namespace {

struct ThumbnailPopupTest : ThreeWindows {
    WindowID sent = desktop.open(mail, {.title = "Sent", .frame = {100, 50, 800, 600}});

    ThumbnailPopupTest()
    {
        desktop.focus(inbox);
        settle();
    }
    /// Of the three windows of one application.
    void openGroup()
    {
        runtime->userSettings().setGroupWindowsByApp(true);
        settle();
        panel().movePointer(content().chipFrames().front().second.centre());
        desktop.advance(seconds(0.5));
        ASSERT_TRUE(popup());
        ASSERT_THAT(cards(), ElementsAre(inbox, draft, sent));
    }
    std::vector<WindowID> cards()
    {
        std::vector<WindowID> windows;
        if (auto* shown = content().thumbnailPopup()) {
            for (auto& place : shown->cardPlaces())
                windows.push_back(place.window);
        }
        return windows;
    }
    Rect cardFrame(WindowID window)
    {
        for (auto& place : content().thumbnailPopup()->cardPlaces()) {
            if (place.window == window)
                return place.frame;
        }
        ADD_FAILURE() << "no card";
        return {};
    }
    /// In the popup.
    Point onCard(WindowID window)
    {
        auto at = cardFrame(window).centre();
        return {at.x - popup()->frame().x, popup()->frame().maxY() - at.y};
    }
    void pointAt(WindowID window)
    {
        panel().leave();
        popup()->movePointer(onCard(window));
    }
    std::optional<WindowID> alone() { return desktop.peeking().alone(); }
    /// Until the window itself is shown.
    void peekAt(WindowID window)
    {
        pointAt(window);
        desktop.advance(WindowPeek::kRest);
        ASSERT_EQ(alone(), window);
    }
    FakeScreenCapture& capture() { return desktop.screenCapture(); }
    int picturesOf(WindowID window)
    {
        return int(std::ranges::count(capture().capturedWindows(), window));
    }
    std::optional<WindowID> keyCard()
    {
        auto card
            = content().thumbnailPopup() ? content().thumbnailPopup()->keyCard() : std::nullopt;
        return card ? std::optional{card->window} : std::nullopt;
    }
    std::string walkedTo()
    {
        auto* view = bar().keyFocusedView();
        return view ? view->accessibleID() : "";
    }
};

}

// Faults: a picture that stands still, one that is followed for nobody, a popup painted whole.
TEST_F(ThumbnailPopupTest, picturesFollowTheirWindowsWhileThePopupIsOpen)
{
    EXPECT_THAT(capture().watchedWindows(), SizeIs(0));
    hoverUntilShown(draft);
    desktop.advance(seconds(2));
    EXPECT_THAT(capture().watchedWindows(), ElementsAre(draft));
    const auto before = picturesOf(draft);
    popup()->forgetPaints();
    capture().windowDraws(draft);
    desktop.advance(seconds(0.1));
    EXPECT_EQ(picturesOf(draft), before + 1);
    ASSERT_THAT(popup()->paints(), SizeIs(1));
    EXPECT_LE(popup()->paints().front().damage.height, 150);

    leave();
    desktop.advance(seconds(1));
    ASSERT_FALSE(popup());
    EXPECT_THAT(capture().watchedWindows(), SizeIs(0));
}

// Fault: a bar that runs for days holds fifty pictures of windows that have long closed.
TEST_F(ThumbnailPopupTest, picturesGoWithTheirWindows)
{
    openGroup();
    desktop.advance(seconds(1));
    auto& pictures = runtime->thumbnailService();
    ASSERT_TRUE(pictures.cached(draft));
    leave();
    desktop.minimise(inbox);
    desktop.close(draft);
    settle();
    EXPECT_FALSE(pictures.cached(draft));
    EXPECT_TRUE(pictures.cached(inbox));
}

// Faults: a wait at each chip; a popup that closes on the way to the next one.
TEST_F(ThumbnailPopupTest, ofTheNextChipOpensAtOnce)
{
    hoverUntilShown(draft);
    panel().movePointer(middleOf(notes));
    EXPECT_THAT(popup()->render().texts(), Contains("Notes"));
    desktop.advance(seconds(1));
    EXPECT_THAT(popup()->render().texts(), Contains("Notes"));
}

// Faults: nothing says whose popup or menu it is once the pointer is in it; a chip that stays lit.
TEST_F(ThumbnailPopupTest, aChipStaysLitWhileItsPopupOrMenuIsOpen)
{
    auto isLit = [&](WindowID id) {
        auto lit = Palette::of({}).hoveredFill;
        return std::ranges::any_of(panel().render().drawn<DrawnFill>(),
            [&](auto& fill) { return fill.color == lit && fill.rect.contains(middleOf(id)); });
    };
    EXPECT_FALSE(isLit(draft));
    hoverUntilShown(draft);
    leave();
    popup()->movePointer({20, 20});
    desktop.advance(seconds(1));
    EXPECT_TRUE(isLit(draft));
    EXPECT_FALSE(isLit(notes));
    popup()->leave();
    desktop.advance(seconds(0.5));
    EXPECT_FALSE(isLit(draft));

    panel().press(middleOf(notes), PointerButton::secondary);
    leave();
    EXPECT_TRUE(isLit(notes));
    desktop.surfaces().menu()->pressKey(KeyCode::escape);
    desktop.drain();
    EXPECT_FALSE(isLit(notes));
}

// Faults: after a close, the next click closes a window that nobody aimed at; a gap that stays.
TEST_F(ThumbnailPopupTest, cardsHoldStillUnderThePointerUntilItLeaves)
{
    openGroup();
    auto first = cardFrame(inbox);
    auto last = cardFrame(sent);
    pointAt(draft);
    popup()->click(onCard(draft), PointerButton::middle);
    settle();
    ASSERT_THAT(cards(), ElementsAre(inbox, sent));
    EXPECT_EQ(cardFrame(inbox), first);
    EXPECT_EQ(cardFrame(sent), last);

    auto other = desktop.open(mail, {.title = "New"});
    settle();
    EXPECT_THAT(cards(), ElementsAre(inbox, sent)) << "it waits";
    panel().movePointer(content().chipFrames().front().second.centre());
    popup()->leave();
    EXPECT_THAT(cards(), ElementsAre(inbox, sent, other));

    // Down to the last one, which is no group any longer.
    for (auto id : {inbox, other}) {
        pointAt(id);
        popup()->click(onCard(id), PointerButton::middle);
        settle();
        ASSERT_TRUE(popup());
    }
    EXPECT_THAT(cards(), ElementsAre(sent));
    popup()->leave();
    desktop.advance(seconds(0.5));
    EXPECT_FALSE(popup());
}

// Faults: no menu, the menu of another window, a popup that goes beneath it or stays for ever.
TEST_F(ThumbnailPopupTest, aCardHasTheMenuOfItsWindow)
{
    openGroup();
    pointAt(draft);
    popup()->press(onCard(draft), PointerButton::secondary);
    desktop.advance(seconds(2));
    EXPECT_THAT(desktop.surfaces().menuTitles(), Contains("Minimise"));
    EXPECT_THAT(cards(), SizeIs(3));
    ASSERT_TRUE(desktop.surfaces().chooseMenuItem("Minimise"));
    settle();
    EXPECT_TRUE(chip(draft)->isMinimized);
    EXPECT_FALSE(chip(inbox)->isMinimized);
    EXPECT_FALSE(popup()) << "the pointer went into the menu and did not come back";
}

// Faults: cards that only a pointer reaches; a walk that loses its place in the bar.
TEST_F(ThumbnailPopupTest, theKeyboardReachesTheCards)
{
    runtime->userSettings().setGroupWindowsByApp(true);
    settle();
    panel().takeKeyboard();
    auto group = walkedTo();
    ASSERT_EQ(group, content().chipFrames().front().first);
    panel().pressKey(KeyCode::up);
    ASSERT_TRUE(popup());
    EXPECT_EQ(keyCard(), inbox) << "the focused one";
    panel().pressKey(KeyCode::left);
    EXPECT_EQ(keyCard(), inbox);
    panel().pressKey(KeyCode::right);
    EXPECT_EQ(keyCard(), draft);
    panel().pressKey(KeyCode::up);
    EXPECT_EQ(keyCard(), draft);
    desktop.advance(seconds(5));
    ASSERT_TRUE(popup()) << "no pointer has to be there";

    panel().pressKey(KeyCode::forwardDelete);
    settle();
    EXPECT_THAT(cards(), ElementsAre(inbox, sent));
    EXPECT_EQ(keyCard(), sent);
    panel().pressKey(KeyCode::escape);
    EXPECT_FALSE(popup());
    EXPECT_TRUE(panel().hasKeyboard());
    EXPECT_EQ(walkedTo(), group);

    panel().pressKey(KeyCode::up);
    panel().pressKey(KeyCode::end);
    panel().pressKey(KeyCode::enter);
    desktop.advance(seconds(0.5));
    EXPECT_FALSE(popup());
    EXPECT_FALSE(panel().hasKeyboard());
    EXPECT_TRUE(chip(sent)->isFocused);

    panel().takeKeyboard();
    panel().pressKey(KeyCode::up);
    ASSERT_TRUE(popup());
    panel().releaseKeyboard();
    EXPECT_FALSE(popup()) << "nobody could close it";
}

// Fault: the end of a long title, which tells the windows apart, is nowhere to be read.
TEST_F(ThumbnailPopupTest, aSingleWindowsTitleIsShownWhole)
{
    hoverUntilShown(draft);
    auto height = popup()->frame().height;
    EXPECT_THAT(popup()->render().texts(), ElementsAre("Draft"));

    desktop.retitle(draft, "A rather long title of a letter that was begun on a Monday in spring");
    settle();
    std::string whole;
    for (auto& line : popup()->render().texts())
        whole += (whole.empty() ? "" : " ") + line;
    EXPECT_EQ(whole, "A rather long title of a letter that was begun on a Monday in spring");
    EXPECT_GT(popup()->frame().height, height);
}

// Fault: a count in a form that the language has for other numbers.
TEST_F(ThumbnailPopupTest, countsTheWindowsForWhichThereIsNoRoom)
{
    Translator::current().plural = [](const char* one, const char*, std::size_t count) {
        return (count == 1 ? "once " : "often ") + std::string{one};
    };
    const auto count = [this](const char* form) {
        const auto before = [&](const std::string& text) { return text.starts_with(form); };
        return std::ranges::count_if(popup()->render().texts(), before);
    };
    openGroup();
    for (int opened = 0; popup() && count("once ") == 0 && opened < 60; ++opened) {
        desktop.open(mail, {.title = "Another"});
        settle();
    }
    EXPECT_EQ(count("once 1 more"), 1);
    desktop.open(mail, {.title = "Another"});
    settle();
    EXPECT_EQ(count("often 2 more"), 1);
    Translator::current() = {};
}

// Faults: nothing tells which of the cards is in use, or which of them calls; that stays when it is
// over; a button without a name.
TEST_F(ThumbnailPopupTest, cardsTellTheFocusedAndTheUrgentWindow)
{
    runtime.reset();
    desktop.launchServices().setAvailable(true);
    start();
    openGroup();
    desktop.advance(seconds(1));
    const auto palette = Palette::of({});
    const auto isEdged = [&](WindowID window, const Color& color) {
        const auto strokes = popup()->render().drawn<DrawnStroke>();
        return std::ranges::any_of(strokes, [&](auto& stroke) {
            return stroke.color == color && stroke.width >= 2
                && stroke.rect.contains(onCard(window));
        });
    };
    const auto isFilled = [&](WindowID window, const Color& color) {
        const auto fills = popup()->render().drawn<DrawnFill>();
        return std::ranges::any_of(fills,
            [&](auto& fill) { return fill.color == color && fill.rect.contains(onCard(window)); });
    };
    const auto looks = [&](WindowID window) {
        return std::string{isEdged(window, palette.accent) ? "focus " : ""}
        + (isFilled(window, palette.cardFill) ? "filled " : "")
            + (isEdged(window, palette.attentionMark) ? "urgent " : "")
            + (isFilled(window, palette.attention) ? "calling " : "");
    };
    EXPECT_EQ(looks(inbox), "focus filled ");
    EXPECT_EQ(std::ranges::count(popup()->elements(), "Close",
                  [](auto* element) { return element->accessibleState().name; }),
        3);
    EXPECT_EQ(looks(draft), "");
    desktop.launchServices().requests = {{draft, "mail"}};
    settle();
    EXPECT_EQ(looks(draft), "urgent calling ");
    desktop.launchServices().requests.clear();
    desktop.focus(draft);
    settle();
    EXPECT_EQ(looks(draft), "focus filled ");
    EXPECT_EQ(looks(inbox), "");
}

// Faults: windows fade for a pointer that only passes; each card has to be waited for, or windows
// flicker between two of them; what has faded stays so once the pointer is elsewhere.
TEST_F(ThumbnailPopupTest, aPointerThatRestsOnACardSeesItsWindowAlone)
{
    openGroup();
    auto between = [&] {
        auto left = onCard(inbox);
        auto right = onCard(draft);
        return Point{(left.x + right.x) / 2, left.y};
    };
    pointAt(inbox);
    desktop.advance(seconds(0.3));
    popup()->movePointer(onCard(inbox).translated(3, 0));
    desktop.advance(seconds(0.4));
    EXPECT_EQ(alone(), std::nullopt) << "it moved";
    desktop.advance(seconds(0.1));
    EXPECT_EQ(alone(), inbox);

    popup()->movePointer(between());
    desktop.advance(WindowPeek::kBetweenCards - seconds(0.01));
    EXPECT_EQ(alone(), inbox);
    popup()->movePointer(onCard(draft));
    EXPECT_EQ(alone(), draft);
    desktop.advance(seconds(5));
    EXPECT_EQ(alone(), draft);
    popup()->movePointer(between());
    desktop.advance(WindowPeek::kBetweenCards);
    EXPECT_EQ(alone(), std::nullopt);
    popup()->movePointer(onCard(sent));
    desktop.advance(WindowPeek::kRest - seconds(0.01));
    EXPECT_EQ(alone(), std::nullopt) << "it ended";
    desktop.advance(seconds(0.01));
    EXPECT_EQ(alone(), sent);
    popup()->leave();
    EXPECT_EQ(alone(), std::nullopt);
}

// Faults: the window that was chosen gets the focus among faded ones; a menu, another space or the
// end of the program leaves them faded; a peek at nothing once the window has gone.
TEST_F(ThumbnailPopupTest, peekingEndsWithWhateverTheUserDoes)
{
    openGroup();
    peekAt(draft);
    popup()->click(onCard(draft), PointerButton::secondary);
    desktop.drain();
    EXPECT_EQ(alone(), std::nullopt);
    desktop.surfaces().menu()->pressKey(KeyCode::escape);
    desktop.drain();
    peekAt(sent);
    desktop.activateSpace(SpaceID{2});
    desktop.drain();
    EXPECT_EQ(alone(), std::nullopt);
    desktop.activateSpace(SpaceID{1});
    settle();

    auto timers = desktop.dispatch().pendingTimers();
    openGroup();
    peekAt(draft);
    popup()->click(onCard(draft));
    EXPECT_EQ(alone(), std::nullopt);
    settle();
    EXPECT_EQ(model().focusedWindowID.value(), draft);
    EXPECT_EQ(desktop.dispatch().pendingTimers(), timers);

    leave();
    panel().movePointer(content().chipFrames().front().second.centre());
    desktop.advance(seconds(0.5));
    ASSERT_TRUE(popup());
    peekAt(sent);
    desktop.close(sent);
    desktop.advance(seconds(1));
    EXPECT_EQ(alone(), std::nullopt);
    peekAt(draft);
    desktop.program().terminate();
    EXPECT_EQ(alone(), std::nullopt);
}

// Faults: what cannot be shown ends the way from card to card; a window that opens, or is
// minimised, meanwhile is not taken into account.
TEST_F(ThumbnailPopupTest, peekingFollowsTheWindows)
{
    desktop.peeking().hide(draft);
    openGroup();
    peekAt(inbox);
    popup()->movePointer(onCard(draft));
    EXPECT_EQ(alone(), std::nullopt);
    popup()->movePointer(onCard(sent));
    EXPECT_EQ(alone(), sent);
    auto asked = desktop.peeking().asked().size();
    desktop.open(editor, {.title = "Late"});
    desktop.advance(seconds(1));
    EXPECT_GT(desktop.peeking().asked().size(), asked);
    EXPECT_EQ(alone(), sent);
    desktop.peeking().hide(sent);
    desktop.minimise(sent);
    desktop.advance(seconds(1));
    EXPECT_EQ(alone(), std::nullopt);
}

// Faults: windows that vanish at once, for ever half faded, or never back once the popup has gone;
// motion for who wants none; frames while nothing moves.
TEST_F(ThumbnailPopupTest, otherWindowsFadeOutAndInAgain)
{
    auto faded = [this] { return desktop.peeking().faded(); };
    openGroup();
    desktop.advance(seconds(1));
    auto timers = desktop.dispatch().pendingTimers();
    peekAt(inbox);
    EXPECT_EQ(faded(), 0);
    desktop.advance(PeekFading::kLength / 2);
    auto half = faded();
    EXPECT_NEAR(half, 0.5, 0.15);
    popup()->leave();
    EXPECT_EQ(faded(), half);
    desktop.advance(PeekFading::kLength / 4);
    EXPECT_NEAR(faded(), half - 0.25, 0.15);
    peekAt(inbox);
    desktop.advance(PeekFading::kLength + seconds(0.02));
    EXPECT_EQ(faded(), 1);
    EXPECT_EQ(desktop.dispatch().pendingTimers(), timers);

    popup()->leave();
    leave();
    desktop.advance(PeekFading::kLength / 2);
    EXPECT_NEAR(faded(), 0.5, 0.15);
    settle();
    EXPECT_EQ(faded(), 0);
    EXPECT_FALSE(popup());

    auto appearance = desktop.program().appearance().value();
    appearance.reduceMotion = true;
    desktop.program().setAppearance(appearance);
    openGroup();
    peekAt(inbox);
    EXPECT_EQ(faded(), 1);
    appearance.reduceMotion = false;
    desktop.program().setAppearance(appearance);
    desktop.program().terminate();
    EXPECT_EQ(faded(), 0) << "there is no later";
}

// Fault: whoever walks the cards with the keys sees windows come and go, since a pointer lies
// there.
TEST_F(ThumbnailPopupTest, peekingIsForThePointerAlone)
{
    panel().takeKeyboard();
    panel().pressKey(KeyCode::up);
    ASSERT_TRUE(keyCard());
    popup()->movePointer(onCard(*keyCard()));
    desktop.advance(seconds(2));
    EXPECT_EQ(alone(), std::nullopt);
    popup()->leave();
    panel().pressKey(KeyCode::escape);
    panel().releaseKeyboard();

    openGroup();
    peekAt(draft);
    desktop.advance(seconds(1));
    EXPECT_EQ(alone(), draft);
}

// Fault: a timer that runs for nothing.
TEST(ThumbnailPopupWithoutPeekingTest, waitsForNothing)
{
    FakeDesktop desktop;
    WindowPeek peek{desktop.dispatch(), desktop.surfaces(), nullptr};
    peek.pointAt(WindowID{1});
    EXPECT_EQ(desktop.dispatch().pendingTimers(), 0);
    peek.update();
    peek.end();
}

}
