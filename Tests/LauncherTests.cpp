// The launcher as its user meets it: how it opens and closes, what it lists, and what keys and
// clicks do in it.
#include <gmock/gmock.h>

#include "Quorvel/Views/BarNote.h"
#include "Tests/Support/LauncherFixture.h"

namespace quorvel::test {

using namespace testing;

using LauncherTest = LauncherFixture;

// MARK: Opening and closing

// Faults: it lies elsewhere, beyond the screen, or without the keyboard; the bar goes on taking the
// keyboard when the pointer comes by, or does not afterwards; something of it is left behind.
TEST_F(LauncherTest, opensAboveTheBarItWasCalledFrom)
{
    startWithApplications();
    auto timersBefore = desktop.dispatch().pendingTimers();
    panel().movePointer({20, 10});
    ASSERT_TRUE(panel().canBecomeKey());
    clickButton();
    ASSERT_TRUE(isOpen());
    auto bar = panel().frame();
    EXPECT_EQ(launcher().frame(), (Rect{bar.x + 5, bar.maxY() + 8, 300, 400}));
    EXPECT_TRUE(launcher().hasKeyboard());
    EXPECT_EQ(launcher().cursor(), Cursor::arrow);
    EXPECT_FALSE(panel().canBecomeKey());
    EXPECT_TRUE(says("Applications"));
    EXPECT_TRUE(says("Search applications..."));
    EXPECT_EQ(rows(), "*Calendar Mail Maps Music Notes Safari");

    clickButton();
    EXPECT_FALSE(isOpen());
    EXPECT_TRUE(panel().canBecomeKey());
    EXPECT_EQ(runtime->barManager()->launcherPanel(), nullptr);
    for (auto* left : desktop.surfaces().panels())
        EXPECT_NE(left->options().kind, PanelKind::launcher);
    settle();
    EXPECT_EQ(desktop.dispatch().pendingTimers(), timersBefore);

    desktop.program().setAppearance({.isRightToLeft = true});
    clickButton();
    EXPECT_EQ(launcher().frame().maxX(), panel().frame().maxX() - 5);
}

// Faults: beyond the top of a low screen; under the menu bar of the Mac; wider than the screen.
TEST(LauncherPresenterTest, keepsTheLauncherOnTheScreen)
{
    Screen screen{
        .frame = {100, 50, 1000, 700}, .visibleFrame = {100, 90, 1000, 600}, .number = {}};
    auto frame = [&](double barHeight, bool isRightToLeft = false) {
        return LauncherPresenter::frameFor(
            {screen.frame.x, screen.frame.y, screen.frame.width, barHeight}, screen,
            LauncherPresenter::sizeOf(LauncherKind::applications), isRightToLeft);
    };
    EXPECT_EQ(frame(40), (Rect{105, 98, 300, 400}));
    EXPECT_EQ(frame(40, true), (Rect{795, 98, 300, 400}));
    screen.visibleFrame.height = 300;
    EXPECT_EQ(frame(40), (Rect{105, 98, 300, 292}));
    screen.visibleFrame.height = 150;
    EXPECT_EQ(frame(40), (Rect{105, 50, 300, 190}));
    screen.visibleFrame = {180, 50, 920, 700}; // another panel at the side
    EXPECT_EQ(frame(40).x, 180);
    screen = {.frame = {0, 0, 200, 100}, .visibleFrame = {}, .number = {}};
    EXPECT_EQ(frame(40), (Rect{0, 0, 200, 100}));
}

// Faults: a click outside leaves it open, one inside closes it; the click that closes it opens it
// again; the next one does not; it asks to be closed twice.
TEST_F(LauncherTest, closesAsSoonAsTheUserTurnsToSomethingElse)
{
    startWithApplications();
    auto closesBy = [&](const std::function<void()>& action) {
        desktop.advance(LauncherPresenter::kHeldBack);
        if (!isOpen())
            clickButton();
        action();
        desktop.drain();
        return !isOpen();
    };
    EXPECT_FALSE(closesBy([&] { launcher().click({150, 20}); }));
    EXPECT_TRUE(closesBy([&] { key(KeyCode::escape); }));
    auto controlKey = [&](KeyCode code, const std::string& letter, std::uint64_t more = 0) {
        launcher().pressKey({.keyCode = code,
            .charactersIgnoringModifiers = letter,
            .modifiers = KeyModifier::control | more});
    };
    EXPECT_TRUE(closesBy([&] { controlKey(KeyCode{6}, "w"); }));
    EXPECT_TRUE(closesBy([&] { controlKey(KeyCode{13}, "ц"); }));
    EXPECT_FALSE(closesBy([&] { controlKey(KeyCode{13}, "z"); }));
    EXPECT_FALSE(closesBy([&] { controlKey(KeyCode{13}, "w", KeyModifier::option); }));
    EXPECT_TRUE(closesBy([&] { desktop.surfaces().pressElsewhere({900, 300}); }));
    EXPECT_TRUE(
        closesBy([&] { desktop.surfaces().pressElsewhere({900, 300}, PointerButton::middle); }));
    EXPECT_TRUE(closesBy([&] { panel().click({700, 10}); }));
    EXPECT_TRUE(closesBy([&] { panel().click(button()); }));
    EXPECT_TRUE(closesBy([&] { launcher().releaseKeyboard(); }));
    EXPECT_TRUE(closesBy([&] { desktop.activateSpace(SpaceID{2}); }));
    desktop.activateSpace(SpaceID{1});
    settle();

    // Pressed on the button, thought better of it; then by the keyboard.
    EXPECT_TRUE(closesBy([&] {
        panel().press(button());
        panel().release({700, 10});
    }));
    auto root = panel().accessibleRoot()->accessibleChildren();
    ASSERT_EQ(root.front()->accessibleState().name, "Applications");
    root.front()->performAccessibleAction(0);
    EXPECT_TRUE(isOpen());
    root.front()->performAccessibleAction(0);
    EXPECT_FALSE(isOpen());
}

// Faults: the button does not show that the launcher is its own; it stays lit, or goes out with
// something else; that of another display is lit as well.
TEST_F(LauncherTest, theButtonIsLitWhileTheLauncherIsOpenFromItsBar)
{
    desktop.addDisplay({.number = DisplayNumber{2},
        .identifier = "SECOND",
        .frame = {1440, 0, 1000, 900},
        .spaces = {{SpaceID{11}}},
        .current = SpaceID{11}});
    startWithApplications();
    auto isLit = [this](SpaceID space) {
        auto at = content(space).menuButtonFrame().centre();
        auto pressed = Palette::of({}).buttonPressedFill;
        return std::ranges::any_of(panel(space).render().drawn<DrawnFill>(),
            [&](auto& fill) { return fill.color == pressed && fill.rect.contains(at); });
    };
    clickButton();
    leave();
    EXPECT_TRUE(isLit(SpaceID{1}));
    EXPECT_FALSE(isLit(SpaceID{11}));
    openMenuOf("Maps");
    desktop.surfaces().closeMenu();
    desktop.drain();
    EXPECT_TRUE(isLit(SpaceID{1}));
    runtime->userSettings().setBarSize(BarSize::large);
    desktop.drain();
    ASSERT_TRUE(isOpen());
    EXPECT_TRUE(isLit(SpaceID{1})) << "the bar was made anew";
    key(KeyCode::escape);
    EXPECT_FALSE(isLit(SpaceID{1}));
    desktop.control().send({"--find"});
    desktop.drain();
    EXPECT_TRUE(isOpen());
    EXPECT_FALSE(isLit(SpaceID{1})) << "the button opens something else";
}

// Faults: the press of another button, or one that is long past, keeps the button from opening it;
// a press opens what it has just closed, since the pointer has moved on while it was handled.
TEST_F(LauncherTest, onlyThePressThatClosesItDoesNotOpenItAnew)
{
    startWithApplications();
    clickButton();
    panel().click(button(), PointerButton::secondary);
    desktop.drain();
    EXPECT_FALSE(isOpen());
    EXPECT_THAT(desktop.surfaces().menuTitles(), Contains("Quit Quorvel"));
    desktop.surfaces().closeMenu();
    desktop.drain();
    auto* element = panel().accessibleRoot()->accessibleChildren().front();
    auto state = element->accessibleState();
    EXPECT_THAT(state.actions, ElementsAre("Open", "Show Menu"));
    EXPECT_TRUE(element->performAccessibleAction(*state.menuAction));
    EXPECT_THAT(desktop.surfaces().menuTitles(), Contains("Quit Quorvel"));
    desktop.surfaces().closeMenu();
    desktop.drain();
    clickButton();
    ASSERT_TRUE(isOpen());

    desktop.surfaces().pressElsewhere(desktop.model().pointer);
    desktop.advance(LauncherPresenter::kHeldBack - seconds(0.001));
    EXPECT_FALSE(isOpen());
    clickButton(); // the same press, which the window manager held back
    EXPECT_FALSE(isOpen());
    clickButton();
    ASSERT_TRUE(isOpen());
    desktop.surfaces().pressElsewhere(desktop.model().pointer);
    desktop.advance(LauncherPresenter::kHeldBack);
    clickButton();
    ASSERT_TRUE(isOpen());

    auto moves = desktop.surfaces().monitorPresses(
        PointerScope::ownWindows, [this](auto&...) { desktop.model().pointer.x += 5; });
    clickButton();
    EXPECT_FALSE(isOpen());
}

// Faults: the request from outside opens a second one, does not close, or opens on another display
// than the pointer's; the launcher stays where its display was.
TEST_F(LauncherTest, opensOnThePointersDisplayAndStaysWithItsBar)
{
    installAll();
    desktop.setSeparateSpaces(true);
    desktop.addDisplay({.number = DisplayNumber{2},
        .identifier = "right",
        .frame = {1440, 0, 1000, 900},
        .spaces = {{SpaceID{7}}},
        .current = SpaceID{7}});
    start();
    auto ask = [&] {
        auto reply = desktop.control().send({"--launcher"});
        desktop.drain();
        return reply->exitStatus;
    };
    desktop.model().pointer = {2000, 300};
    EXPECT_EQ(ask(), 0);
    ASSERT_TRUE(isOpen());
    EXPECT_EQ(launcher().frame().x, 1445);
    EXPECT_EQ(ask(), 0);
    EXPECT_FALSE(isOpen());
    desktop.model().pointer = {300, 300};
    ask();
    EXPECT_EQ(launcher().frame().x, 5);
    ask();

    desktop.model().pointer = {2000, 300};
    ask();
    auto displays = desktop.model().displays;
    displays[1].frame = {1440, 0, 800, 600};
    desktop.setDisplays(displays);
    settle();
    EXPECT_EQ(launcher().frame().y, panel(SpaceID{7}).frame().maxY() + 8);
    displays.pop_back();
    desktop.setDisplays(displays);
    settle();
    EXPECT_FALSE(isOpen());

    desktop.setDisplays({});
    settle();
    EXPECT_EQ(ask(), 1);
}

// MARK: What it lists

// Faults: an empty section; pins that are not installed; pins among the results; a query that only
// hides rows; blanks taken for a query.
TEST_F(LauncherTest, listsThePinsAndBelowThemEverything)
{
    startWithApplications();
    clickButton();
    EXPECT_FALSE(says("Pinned"));
    EXPECT_EQ(rowFrame("Calendar").y, launcher().render().text("Calendar")->rect.y);
    auto first = rowFrame("Calendar").y;

    pin({"Safari", "gone", "Mail"});
    EXPECT_TRUE(says("Pinned"));
    EXPECT_EQ(rows().substr(0, 32), "*[Safari] [Mail] Calendar Mail M");
    EXPECT_EQ(rowFrame("Safari", AppListSection::pinned).y, first + 28);
    EXPECT_EQ(rowFrame("Calendar").y, first + 28 + 2 * 36 + 14);

    type("ma");
    EXPECT_EQ(rows(), "*Mail Maps");
    EXPECT_FALSE(says("Pinned"));
    type("x\"");
    EXPECT_TRUE(says("No apps matching \"max\"\""));
    EXPECT_EQ(rows(), "");
    auto isReadAs = [&](const std::string& text) {
        return std::ranges::any_of(elements(), [&](auto* element) {
            return element->accessibleID() == "message" && element->accessibleState().name == text;
        });
    };
    EXPECT_TRUE(isReadAs("No apps matching \"max\"\""));
    type("y");
    EXPECT_TRUE(isReadAs("No apps matching \"max\"y\""));
    key(KeyCode::enter);
    EXPECT_TRUE(isOpen());
    key(KeyCode::escape);
    EXPECT_EQ(rows().substr(0, 9), "*[Safari]");
    type("  ");
    EXPECT_TRUE(says("Pinned"));
    key(KeyCode::escape);
    EXPECT_TRUE(isOpen());
    key(KeyCode::escape);
    EXPECT_FALSE(isOpen());

    clickButton();
    EXPECT_TRUE(says("Search applications...")); // the query of last time is gone
}

// Faults: a list that stays empty, or loses the user's place for a change that does not show; a
// removed application that can still be opened; an icon for every application at once.
TEST_F(LauncherTest, followsTheCatalogue)
{
    BundleDescription helper;
    helper.isOffered = false;
    desktop.install(pathOf("Helper"), helper);
    start();
    clickButton();
    EXPECT_TRUE(says("Loading applications..."));
    EXPECT_THAT(launcher().render().drawn<DrawnSymbol>(),
        Contains(Field(&DrawnSymbol::symbol, Symbol::appDashed)));
    for (int number = 100; number < 400; ++number)
        install("App " + std::to_string(number));
    settle();
    EXPECT_FALSE(says("Loading applications..."));
    EXPECT_EQ(rows().substr(0, 8), "*App 100");
    EXPECT_THAT(desktop.workspace().renderedIcons(), SizeIs(Le(10U)));
    EXPECT_THAT(launcher().render().drawn<DrawnImage>(), SizeIs(Ge(8U)));

    key(KeyCode::down);
    desktop.fileEvents().change("/Applications");
    settle();
    EXPECT_THAT(rows(), HasSubstr("*App 101"));
    desktop.uninstall(pathOf("App 101"));
    settle();
    EXPECT_THAT(rows(), AllOf(HasSubstr("*App 100"), Not(HasSubstr("App 101"))));
}

// Faults: what was selected for another query stays selected, perhaps out of sight; an application
// that comes or goes takes the user back to the top.
TEST_F(LauncherTest, onlyAnotherQueryLeadsToTheTop)
{
    names = {"01", "02", "03", "04", "05", "06", "07", "08", "09", "10", "11", "12", "13", "14"};
    startWithApplications();
    clickButton();
    for (int step = 0; step < 12; ++step)
        key(KeyCode::down);
    EXPECT_THAT(rows(), EndsWith("*13"));
    auto first = shown().rowPlaces().front().frame;
    install("15");
    settle();
    EXPECT_THAT(rows(), EndsWith("*13"));
    EXPECT_EQ(shown().rowPlaces().front().frame, first);
    install("00");
    settle();
    EXPECT_THAT(rows(), EndsWith("12")); // the list is where it was
    key(KeyCode::down);
    EXPECT_THAT(rows(), EndsWith("*14"));

    type(" "); // all the rows as before
    EXPECT_THAT(rows(), StartsWith("*00 01"));
    key(KeyCode::pageDown);
    key(KeyCode::pageDown);
    type("0");
    EXPECT_THAT(rows(), StartsWith("*0"));
    key(KeyCode::escape);
    for (int step = 0; step < 20; ++step)
        key(KeyCode::down);
    desktop.uninstall(pathOf("15"));
    settle();
    EXPECT_THAT(rows(), StartsWith("*00 01"));
}

// Fault: the icons are those for the screen that the launcher was made on.
TEST_F(LauncherTest, iconsAreAsSharpAsTheScreenIsNow)
{
    startWithApplications();
    clickButton();
    auto times
        = [&] { return std::ranges::count(desktop.workspace().renderedIcons(), pathOf("Mail")); };
    EXPECT_EQ(times(), 1);
    desktop.model().displays.front().scale = 2;
    type("ma");
    EXPECT_EQ(times(), 2);
}

// MARK: Keys

// Faults: a step onto what is no application, around an end, or out of sight; Return for another
// one than looks selected, or from the key that opened the launcher and is still down.
TEST_F(LauncherTest, isWalkedAndOpenedWithTheKeys)
{
    names = {"01", "02", "03", "04", "05", "06", "07", "08", "09", "10", "11", "12", "13", "14"};
    startWithApplications();
    pin({"05"});
    clickButton();
    EXPECT_THAT(rows(), StartsWith("*[05] 01"));
    key(KeyCode::up);
    EXPECT_THAT(rows(), StartsWith("*[05] 01"));
    key(KeyCode::down);
    EXPECT_THAT(rows(), StartsWith("[05] *01"));
    key(KeyCode::pageDown);
    EXPECT_THAT(rows(), EndsWith("*08"));
    key(KeyCode::down);
    EXPECT_THAT(rows(), EndsWith("*09"));
    key(KeyCode::pageUp);
    key(KeyCode::pageUp);
    key(KeyCode::pageUp);
    EXPECT_THAT(rows(), StartsWith("*[05] 01"));
    EXPECT_TRUE(says("Pinned"));
    for (int step = 0; step < 40; ++step)
        key(KeyCode::down);
    EXPECT_THAT(rows(), EndsWith("*14"));

    key(KeyCode::enter, true);
    EXPECT_TRUE(isOpen());
    key(KeyCode::enter);
    EXPECT_FALSE(isOpen());
    EXPECT_THAT(opened(), ElementsAre(pathOf("14")));
}

// Faults: letters lost while a button has the keyboard, or put into the middle; a button that Space
// does not press; Escape that does not give the keyboard back to the field.
TEST_F(LauncherTest, typingGoesOnWhereverTheKeyboardIs)
{
    startWithApplications();
    clickButton();
    type("m");
    key(KeyCode::tab);
    EXPECT_EQ(BarViews::panel(*runtime->barManager()->launcherPanel())
                  .keyFocusedView()
                  ->accessibleState()
                  .name,
        "Clear");
    type("u");
    EXPECT_EQ(rows(), "*Music");
    key(KeyCode::tab);
    launcher().textInput()->insertText("s");
    EXPECT_EQ(shown().query(), "mus");
    key(KeyCode::tab);
    launcher().pressKey({.keyCode = KeyCode::space, .characters = " "});
    EXPECT_EQ(shown().query(), "");
    type("ca");
    EXPECT_EQ(rows(), "*Calendar");
    launcher().click(shown().clearButtonFrame().centre());
    EXPECT_EQ(shown().query(), "");
    type("not");
    EXPECT_EQ(rows(), "*Notes");
    key(KeyCode::home);
    type("x");
    EXPECT_EQ(shown().query(), "xnot");
}

// MARK: The pointer

// Faults: a click opens nothing, another row, or twice; a press that was taken back opens; the
// pointer takes the selection along.
TEST_F(LauncherTest, aClickOpensTheRowBelowThePointer)
{
    startWithApplications();
    clickButton();
    auto maps = rowFrame("Maps").centre();
    launcher().movePointer(maps);
    EXPECT_THAT(rows(), StartsWith("*Calendar"));
    launcher().press(maps);
    launcher().release(rowFrame("Notes").centre());
    launcher().click(maps, PointerButton::middle);
    EXPECT_TRUE(isOpen());

    launcher().press(maps);
    type("m"); // another row is there when the button is let go
    launcher().release(maps);
    EXPECT_TRUE(isOpen());
    EXPECT_THAT(opened(), IsEmpty());
    key(KeyCode::escape);

    launcher().click(rowFrame("Maps").centre());
    desktop.drain();
    EXPECT_FALSE(isOpen());
    EXPECT_THAT(opened(), ElementsAre(pathOf("Maps")));
}

// MARK: To others

// Faults: a launch that fails unseen; a note that stays, or cannot be clicked away.
TEST_F(LauncherTest, aLaunchThatFailsIsSaidOnTheBar)
{
    startWithApplications();
    auto noteFrame = [&]() -> std::optional<Rect> {
        desktop.drain();
        auto picture = panel().render();
        auto* text = picture.text("Maps could not be opened");
        return text ? std::optional{text->rect} : std::nullopt;
    };
    desktop.workspace().failToLaunch("Maps");
    ASSERT_TRUE(noteFrame());
    panel().click(noteFrame()->centre());
    EXPECT_FALSE(noteFrame());
    desktop.workspace().failToLaunch("Maps");
    EXPECT_TRUE(noteFrame());
    desktop.advance(BarNote::kTimeToRead);
    EXPECT_FALSE(noteFrame());
}

// Faults: a screen reader finds a panel and nothing in it, or rows in another order than they lie;
// the state report lacks what a script aims at.
TEST_F(LauncherTest, isReadAloudAndReported)
{
    startWithApplications();
    pin({"Maps"});
    clickButton();
    std::vector<std::string> read;
    for (auto* element : elements()) {
        auto state = element->accessibleState();
        read.push_back(state.name + (state.isSelected ? " selected" : ""));
        if (state.position)
            read.back() += " " + std::to_string(state.position->index + 1) + "/"
                + std::to_string(state.position->count);
    }
    EXPECT_THAT(read,
        ElementsAre("Applications", "Applications", "Search", "Applications", "Pinned",
            "Maps selected 1/7", "Calendar 2/7", "Mail 3/7", "Maps 4/7", "Music 5/7", "Notes 6/7",
            "Safari 7/7"));

    type("mu");
    auto state = desktop.control().send({"--state"})->output;
    EXPECT_THAT(state,
        AllOf(HasSubstr(R"("query":"mu")"), HasSubstr(R"("rows":[{"id":"Music")"),
            HasSubstr(R"("selected":true)")));
    key(KeyCode::escape);
    key(KeyCode::escape);
    EXPECT_THAT(desktop.control().send({"--state"})->output, HasSubstr(R"("launcher":null)"));
}

}
