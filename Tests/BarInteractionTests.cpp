// What hovering, clicking, dragging and the keyboard do on the bar, through real pointer events.
#include "Quorvel/Core/LaunchMarks.h"
#include "Quorvel/Views/BarBackground.h"
#include "Quorvel/Views/Kit/Palette.h"
#include "Quorvel/Views/ReorderDrag.h"
#include "Quorvel/Views/ThumbnailPopup.h"
#include "Tests/Support/BarFixture.h"

namespace quorvel::test {

namespace {

struct BarInteractionTest : ThreeWindows {
    Palette palette()
    {
        auto& appearance = desktop.program().appearance().value();
        return Palette::of(
            appearance, BarBackground::ground(runtime->userSettings().theme(), appearance));
    }
    /// What hides the rest of the bar below an item in the hand.
    Rect groundOfLifted()
    {
        Rect ground;
        for (auto& fill : panel().render().drawn<DrawnFill>())
            ground = fill.color == palette().ground && fill.radius > 0 ? fill.rect : ground;
        return ground;
    }
    bool isPainted(const Rect& rect)
    {
        return std::ranges::any_of(
            panel().paints(), [&](auto& paint) { return paint.damage.contains(rect); });
    }
    void drag(Point from, Point to)
    {
        panel().press(from);
        panel().movePointer({(from.x + to.x) / 2, (from.y + to.y) / 2});
        panel().movePointer(to);
        panel().release(to);
        desktop.advance(seconds(0.3));
    }
};

}

// MARK: Popups

// Faults: it opens while the pointer only passes, or never, or stays.
TEST_F(BarInteractionTest, aPopupOpensAtRestAndClosesAfterThePointerHasLeft)
{
    panel().movePointer(middleOf(draft));
    desktop.advance(seconds(0.2));
    EXPECT_FALSE(popup());
    panel().movePointer(middleOf(draft).translated(3, 0));
    desktop.advance(seconds(0.2));
    EXPECT_FALSE(popup()) << "it moved";
    desktop.advance(seconds(0.05));
    ASSERT_TRUE(popup());
    EXPECT_EQ(popup()->frame().y, panel().frame().maxY());
    EXPECT_THAT(popup()->render().texts(), Contains("Draft"));

    panel().leave();
    desktop.advance(seconds(0.1));
    popup()->movePointer({20, 20});
    desktop.advance(seconds(1));
    EXPECT_TRUE(popup()) << "the pointer is in it";
    popup()->leave();
    desktop.advance(seconds(0.2));
    EXPECT_FALSE(popup());
}

TEST_F(BarInteractionTest, aPopupMovesToTheNextChipAndGoesWithAClickOrAMenu)
{
    hoverUntilShown(draft);
    auto first = popup()->frame();
    panel().movePointer(middleOf(notes));
    desktop.advance(seconds(0.5));
    ASSERT_TRUE(popup());
    EXPECT_THAT(popup()->render().texts(), Contains("Notes"));
    EXPECT_GT(popup()->frame().x, first.x);

    panel().click(middleOf(notes));
    EXPECT_FALSE(popup());
    desktop.advance(seconds(2));
    EXPECT_FALSE(popup()) << "not before the pointer has left the chip";
    leave();
    hoverUntilShown(draft);
    panel().click(middleOf(draft), PointerButton::secondary);
    desktop.advance(seconds(1));
    EXPECT_FALSE(popup());
    EXPECT_TRUE(desktop.surfaces().menu());
}

TEST_F(BarInteractionTest, aGroupsPopupHasACardForEachWindow)
{
    runtime->userSettings().setGroupWindowsByApp(true);
    settle();
    auto frame = content().chipFrames().front().second;
    panel().movePointer(frame.centre());
    desktop.advance(seconds(0.25));
    ASSERT_TRUE(popup());
    ASSERT_THAT(content().thumbnailPopup()->cardPlaces(), SizeIs(2));
    EXPECT_THAT(popup()->render().texts(), ElementsAre("Inbox", "Draft"));

    desktop.close(draft);
    settle();
    ASSERT_TRUE(popup()) << "the single chip that took the group's place has its own";
    EXPECT_THAT(popup()->render().texts(), ElementsAre("Inbox"));

    leave();
    hoverUntilShown(notes);
    auto place = content().thumbnailPopup()->cardPlaces().front().frame;
    auto at
        = Point{place.centre().x - popup()->frame().x, popup()->frame().maxY() - place.centre().y};
    popup()->click(at);
    desktop.advance(seconds(0.5));
    EXPECT_FALSE(popup());
    EXPECT_TRUE(chip(notes)->isFocused);
}

// MARK: Drags

TEST_F(BarInteractionTest, aDraggedChipGoesWhereItIsDroppedAndStaysThere)
{
    auto id = [](WindowID window) { return displayItemID(window); };
    ASSERT_THAT(chipIDs(), ElementsAre(id(inbox), id(draft), id(notes)));
    drag(middleOf(notes), middleOf(inbox).translated(-10, 0));
    EXPECT_THAT(chipIDs(), ElementsAre(id(notes), id(inbox), id(draft)));
    EXPECT_FALSE(chip(notes)->isFocused) << "a drag is no click";
    desktop.retitle(draft, "Other");
    settle();
    leave();
    EXPECT_THAT(chipIDs(), ElementsAre(id(notes), id(inbox), id(draft)));
    EXPECT_LT(chipFrame(notes)->x, chipFrame(inbox)->x);

    // The window closes under the hand.
    panel().press(middleOf(notes));
    panel().movePointer(middleOf(draft));
    desktop.close(notes);
    settle();
    EXPECT_LE(chipFrame(inbox)->maxX(), chipFrame(draft)->x) << "the others made room for it";
    panel().release(middleOf(draft));
    settle();
    EXPECT_THAT(chipIDs(), ElementsAre(id(inbox), id(draft)));
}

// Faults: a drag that Escape was to cancel drops the chip all the same; keys go to the program
// below while the chip is in the hand, or to the bar when it no longer is.
TEST_F(BarInteractionTest, escapeCancelsADrag)
{
    auto before = chipIDs();
    panel().press(middleOf(notes));
    panel().movePointer(middleOf(inbox).translated(-10, 0));
    EXPECT_TRUE(panel().hasKeyboard());
    EXPECT_TRUE(panel().pressKey(KeyCode::escape));
    EXPECT_FALSE(panel().hasKeyboard());
    panel().movePointer(middleOf(draft));
    settle();
    EXPECT_EQ(popup(), nullptr) << "the button is still down";
    panel().release(middleOf(draft));
    settle();
    EXPECT_NE(popup(), nullptr);
    EXPECT_EQ(chipIDs(), before);
    EXPECT_TRUE(chip(inbox)->isFocused);
    drag(middleOf(notes), middleOf(inbox).translated(-10, 0));
    EXPECT_EQ(chipIDs().front(), displayItemID(notes));
    EXPECT_FALSE(panel().hasKeyboard());
}

// Faults: the middle of the chip counts instead of the pointer, and what was painted of the chip
// outside the row stays there.
TEST_F(BarInteractionTest, aChipDroppedOnASpaceMovesItsWindowThere)
{
    auto cell = content().spaceCellFrames().at(1).second;
    auto icon = Point{chipFrame(draft)->x + 10, chipFrame(draft)->centre().y};
    panel().press(icon);
    panel().movePointer({cell.x - 60, cell.centre().y});
    panel().movePointer(cell.centre());
    desktop.drain();
    auto lifted = groundOfLifted();
    panel().forgetPaints();
    panel().release(cell.centre());
    desktop.drain();
    EXPECT_TRUE(isPainted(lifted));
    settle();
    EXPECT_FALSE(chipFrame(draft));
    EXPECT_THAT(chipTitles(SpaceID{2}), ElementsAre("Draft"));
    EXPECT_TRUE(desktop.model().isCurrent(SpaceID{1})) << "the user stays";
    EXPECT_THAT(desktop.windowServer().postedPointer(), IsEmpty()) << "nor is it carried there";
}

// Faults: what lies below shows through what is in the hand; an edge cuts it off; it leaves traces
// of its shadow; it hides the cell that it is over; nobody says what will happen there, or it is
// said when it no longer will.
TEST_F(BarInteractionTest, whatIsInTheHandLiesAboveTheRestAndSaysWhereItGoes)
{
    auto titles = [&] { return popup() ? popup()->render().texts() : std::vector<std::string>{}; };
    auto cells = content().spaceCellFrames();
    auto start = middleOf(draft);
    panel().press(start);
    panel().movePointer(start.translated(20, 0));
    desktop.drain();
    auto lifted = groundOfLifted();
    EXPECT_GT(lifted.width, chipFrame(draft)->width);
    auto drawn = panel().render();
    EXPECT_EQ(drawn.text("Draft")->opacity, 1);
    Rect shadow;
    for (auto& fill : drawn.drawn<DrawnFill>()) {
        if (fill.color == palette().shadow) {
            EXPECT_EQ(fill.visible, fill.rect.intersected(panel().bounds()));
            shadow = shadow.united(fill.visible);
        }
    }
    EXPECT_TRUE(shadow.inset(1, 0).contains(lifted.intersected(panel().bounds())));
    panel().forgetPaints();
    panel().movePointer({10, start.y});
    desktop.advance(seconds(1));
    EXPECT_TRUE(isPainted(shadow));
    EXPECT_LT(groundOfLifted().x, chipFrame(inbox)->x) << "beyond the row's edge";

    for (auto& [space, cell] : cells) {
        panel().movePointer(cell.centre());
        if (space == SpaceID{1}) {
            EXPECT_THAT(titles(), IsEmpty()) << "it is there";
            continue;
        }
        EXPECT_THAT(titles(), ElementsAre("Move to Desktop " + std::to_string(raw(space))));
        EXPECT_NEAR(popup()->frame().centre().x, cell.centre().x, 1);
        EXPECT_TRUE(cell.contains(groundOfLifted()));
    }
    panel().movePointer(start);
    EXPECT_THAT(titles(), IsEmpty());
    panel().movePointer(cells.back().second.centre());
    EXPECT_THAT(titles(), SizeIs(1));
    panel().pressKey(KeyCode::escape);
    EXPECT_THAT(titles(), IsEmpty());
    settle();
    EXPECT_EQ(chipFrame(draft)->centre(), start);
}

// Faults: the edge of the bar cuts the shadow; on a low bar there is none left.
TEST_F(BarInteractionTest, theShadowOfWhatIsInTheHandEndsInsideTheBar)
{
    for (auto size : kAllBarSizes) {
        runtime->userSettings().setBarSize(size);
        settle();
        auto start = middleOf(draft);
        panel().press(start);
        panel().movePointer(start.translated(20, 0));
        desktop.drain();
        Rect shadow;
        for (auto& fill : panel().render().drawn<DrawnFill>())
            shadow = fill.color == palette().shadow ? shadow.united(fill.rect) : shadow;
        auto lifted = groundOfLifted();
        EXPECT_GE(shadow.maxY(), lifted.maxY() + 2) << rawValue(size);
        EXPECT_LE(shadow.maxY(), panel().bounds().maxY() + 1e-9) << rawValue(size);
        EXPECT_GE(shadow.y, 0) << rawValue(size);
        panel().release(start.translated(20, 0));
        leave();
        settle();
    }
}

// Faults: a press where a chip was a moment ago closes the gap, so that the next one hits a
// neighbour; a window that opens makes the chips of a full row narrower under the pointer.
TEST_F(BarInteractionTest, nothingMovesUnderTheHandThatPressesAGapOrRestsOnAFullRow)
{
    auto gap = middleOf(inbox);
    panel().movePointer(gap);
    desktop.close(inbox);
    settle();
    auto place = chipFrame(draft);
    panel().press(gap);
    settle();
    EXPECT_EQ(chipFrame(draft), place);
    panel().release(gap);
    for (int i = 0; i < 20; ++i)
        desktop.open(editor, {.title = "New"});
    settle();
    EXPECT_EQ(chipFrame(draft), place);
    leave();
    EXPECT_NE(chipFrame(draft), place);
    EXPECT_TRUE(chipFrame(draft));
}

TEST_F(BarInteractionTest, pinsStandBeforeTheChipsWhileTheirApplicationHasNoWindow)
{
    for (auto* id : {"player", "mail", "browser"})
        pin(id);
    EXPECT_THAT(pinIDs(), ElementsAre("player", "browser"));
    EXPECT_LT(content().pinFrames().back().second.x, chipFrame(inbox)->x);

    auto lookups = desktop.workspace().iconLookups();
    for (int i = 0; i < 10; ++i) {
        desktop.retitle(notes, "Title " + std::to_string(i));
        settle();
    }
    EXPECT_EQ(desktop.workspace().iconLookups(), lookups) << "for a title";

    panel().click(content().pinFrames().front().second.centre());
    desktop.drain();
    EXPECT_THAT(desktop.workspace().opened(), ElementsAre("/Applications/player"));
    leave();

    // It is not said to start any longer once its window is there, wherever that is.
    auto isStarting = [this](const std::string& id) {
        auto said = content().accessibleChildren();
        return std::ranges::any_of(said, [&](auto* element) {
            return element->accessibleID() == "pin-" + id
                && element->accessibleState().name.ends_with("starting");
        });
    };
    auto browser = content().pinFrames().back().second.centre();
    panel().click(browser);
    desktop.drain();
    EXPECT_TRUE(isStarting("browser"));
    leave();
    auto process = desktop.launch({.name = "Browser", .bundleIdentifier = "browser"});
    auto page = desktop.open(process, {.title = "Page", .spaces = {SpaceID{2}}});
    desktop.advance(seconds(2));
    EXPECT_FALSE(isStarting("browser"));
    desktop.close(page);
    desktop.terminate(process);
    settle();

    // Behind the last visible one is still before those that are not on this bar.
    pin("editor");
    auto pins = content().pinFrames();
    drag(pins.front().second.centre(), pins.back().second.centre().translated(15, 0));
    EXPECT_THAT(pinIDs(), ElementsAre("browser", "player"));
    EXPECT_THAT(manager().pinStore().pinnedAppIDs(PinDestination::bar),
        ElementsAre("mail", "browser", "player", "editor"));
    leave();

    panel().movePointer(middleOf(inbox));
    auto player = desktop.launch({.name = "Player", .bundleIdentifier = "player"});
    desktop.open(player, {.title = "Song"});
    settle();
    EXPECT_THAT(pinIDs(), ElementsAre("browser")) << "its chip is in the place of the other";
    leave();
    EXPECT_THAT(pinIDs(), ElementsAre("browser"));
}

// Fault: something without a pin that has a place behind the pins sends a pin behind the hidden
// ones.
TEST_F(BarInteractionTest, aPinIsDroppedAmongPinsWhileSomethingElseStarts)
{
    for (auto* id : {"player", "mail", "browser", "editor"})
        pin(id);
    desktop.workspace().install("viewer", "/Applications/viewer");
    desktop.workspace().openApplication({"/Applications/viewer"});
    desktop.drain();
    auto pins = content().pinFrames();
    ASSERT_THAT(pins, SizeIs(3));
    drag(pins[0].second.centre(), pins[1].second.centre().translated(15, 0));
    EXPECT_THAT(manager().pinStore().pinnedAppIDs(PinDestination::bar),
        ElementsAre("mail", "browser", "player", "editor"));
}

// Faults: who starts an application by other means than its pin sees nothing until its window
// comes; what failed is said to start for ten seconds.
TEST_F(BarInteractionTest, showsWhatIsBeingStartedUntilItsWindowIsThere)
{
    for (auto* id : {"player", "browser", "editor"})
        desktop.workspace().install(id, "/Applications/" + std::string{id});
    auto start = [&](const std::string& id) {
        desktop.workspace().openApplication({"/Applications/" + id});
        desktop.drain();
    };
    for (auto* id : {"player", "browser", "editor"})
        start(id);
    EXPECT_THAT(pinIDs(), ElementsAre("player", "browser")) << "the editor has windows";

    desktop.workspace().failToLaunch("player");
    desktop.drain();
    EXPECT_THAT(pinIDs(), ElementsAre("browser"));
    desktop.open(
        desktop.launch({.name = "Browser", .bundleIdentifier = "browser"}), {.title = "Page"});
    desktop.advance(seconds(2));
    EXPECT_THAT(pinIDs(), IsEmpty());

    start("player");
    desktop.advance(LaunchMarks::kPatience - seconds(1));
    start("player");
    desktop.advance(LaunchMarks::kPatience - seconds(1));
    EXPECT_THAT(pinIDs(), ElementsAre("player")) << "it was started once more";
    desktop.advance(seconds(2));
    EXPECT_THAT(pinIDs(), IsEmpty());
}

// Fault: on an empty desktop the first chips under the pointer have no width.
TEST_F(BarInteractionTest, aChipThatComesUnderThePointerCanBeClicked)
{
    desktop.activateSpace(SpaceID{2});
    settle();
    panel(SpaceID{2}).movePointer({400, 10});
    desktop.open(editor, {.title = "New", .spaces = {SpaceID{2}}});
    settle();
    ASSERT_THAT(content(SpaceID{2}).chipFrames(), SizeIs(1));
    EXPECT_GT(content(SpaceID{2}).chipFrames().front().second.width, 20);
}

// Fault: a chip is dropped before one that has gone meanwhile, and so goes nowhere.
TEST(ReorderDrag, dropsBeforeTheNextThatIsThere)
{
    ReorderDrag drag{"c",
        {{"a", {0, 0, 100, 30}}, {"b", {110, 0, 100, 30}}, {"c", {220, 0, 100, 30}}},
        {"a", "b", "c"}};
    drag.setTranslation({-500, 0});
    EXPECT_EQ(drag.dropTargetID([](auto& id) { return id != "a"; }), "b");
}

// MARK: Spaces, desktop, files, keyboard

TEST_F(BarInteractionTest, cellsAndTheListSwitchSpacesAndTheButtonShowsTheDesktop)
{
    panel().click(content().spaceCellFrames().at(2).second.centre());
    desktop.advance(seconds(0.5));
    EXPECT_TRUE(desktop.model().isCurrent(SpaceID{3}));
    auto& there = panel(SpaceID{3});
    there.click(content(SpaceID{3}).spaceListButtonFrame().centre());
    desktop.drain();
    EXPECT_THAT(desktop.surfaces().menuTitles(), SizeIs(3));
    EXPECT_THAT(desktop.surfaces().menuTitles().front(), HasSubstr("3 windows"));
    desktop.surfaces().chooseMenuItem(desktop.surfaces().menuTitles().front());
    desktop.advance(seconds(0.5));
    EXPECT_TRUE(desktop.model().isCurrent(SpaceID{1}));

    panel().click(content().showDesktopButtonFrame().centre());
    EXPECT_TRUE(desktop.windowServer().isShowingDesktop.value());
}

TEST_F(BarInteractionTest, filesThatRestOnAChipRaiseItsWindowAndOpenWithAPin)
{
    pin("player");
    panel().dragFiles(DropAction::entered, middleOf(notes));
    desktop.advance(seconds(0.4));
    EXPECT_FALSE(chip(notes)->isFocused);
    desktop.advance(seconds(0.6));
    EXPECT_TRUE(chip(notes)->isFocused);
    auto pinned = content().pinFrames().front().second.centre();
    EXPECT_TRUE(panel().dragFiles(DropAction::moved, pinned));
    panel().dragFiles(DropAction::dropped, pinned, {"/song"});
    EXPECT_THAT(desktop.workspace().opened(), ElementsAre("/song with /Applications/player"));
    EXPECT_FALSE(panel().dragFiles(DropAction::moved, {5, 10}));
}

// Faults: the walk begins far from the window in use, goes another way than the arrow, or to what
// nobody sees.
TEST_F(BarInteractionTest, theKeyboardWalksTheBarAndPressesWhatIsFocused)
{
    EXPECT_EQ(desktop.control().send({"--focus"})->exitStatus, 0);
    auto walkedTo = [&] {
        for (auto* element : panel().accessibleRoot()->accessibleChildren()) {
            if (element->accessibleState().hasKeyFocus)
                return element->accessibleID();
        }
        return std::string{};
    };
    EXPECT_EQ(walkedTo(), displayItemID(inbox));
    panel().dragFiles(DropAction::entered, middleOf(notes));
    runtime->userSettings().setBarSize(BarSize::large); // makes every view anew
    desktop.drain();
    panel().dragFiles(DropAction::moved, middleOf(draft));
    panel().dragFiles(DropAction::exited, {});
    EXPECT_EQ(walkedTo(), displayItemID(inbox));
    panel().pressKey(KeyCode::right);
    EXPECT_EQ(walkedTo(), displayItemID(draft));
    panel().pressKey(KeyCode::right);
    panel().pressKey(KeyCode::enter);
    desktop.advance(seconds(0.5));
    EXPECT_TRUE(chip(notes)->isFocused);
    EXPECT_FALSE(panel().hasKeyboard());

    // A menu that is escaped from gives the keyboard back where it was.
    panel().takeKeyboard();
    panel().pressKey(KeyCode::left);
    for (auto& key : {KeyEvent{.keyCode = KeyCode::menu},
             KeyEvent{.keyCode = KeyCode::f10, .modifiers = KeyModifier::shift},
             KeyEvent{.keyCode = KeyCode::enter, .modifiers = KeyModifier::control}}) {
        EXPECT_TRUE(panel().pressKey(key));
        EXPECT_FALSE(panel().hasKeyboard());
        EXPECT_THAT(desktop.surfaces().menuTitles(), Contains(HasSubstr("Close")));
        desktop.surfaces().closeMenu();
        desktop.drain();
        EXPECT_TRUE(panel().hasKeyboard());
        EXPECT_EQ(walkedTo(), displayItemID(draft));
    }
    EXPECT_FALSE(panel().pressKey(KeyCode::f10));
    panel().pressKey(KeyCode::menu);
    desktop.surfaces().menu()->press({-200, -200});
    desktop.drain();
    EXPECT_FALSE(desktop.surfaces().menu());
    EXPECT_FALSE(panel().hasKeyboard()) << "the user has clicked elsewhere";
    panel().takeKeyboard();
    panel().pressKey(KeyCode::menu);
    EXPECT_TRUE(desktop.surfaces().chooseMenuItem("Minimise"));
    desktop.drain();
    EXPECT_FALSE(panel().hasKeyboard());

    auto last = openMany().back();
    panel().takeKeyboard();
    panel().pressKey(KeyCode::home);
    for (int i = 0; i < 80 && walkedTo() != displayItemID(last); ++i) {
        panel().pressKey(KeyCode::right);
        EXPECT_NE(walkedTo(), "show-desktop");
    }
    EXPECT_FALSE(chipFrame(last)->isEmpty());
}

// MARK: What it says and looks like

TEST_F(BarInteractionTest, aScreenReaderHearsWhatTheChipsShow)
{
    std::vector<std::string> names;
    for (auto* element : panel().accessibleRoot()->accessibleChildren()) {
        auto state = element->accessibleState();
        names.push_back(state.name);
        if (state.menuAction) {
            EXPECT_TRUE(element->performAccessibleAction(*state.menuAction)) << state.name;
            EXPECT_TRUE(desktop.surfaces().menu()) << state.name;
            desktop.surfaces().closeMenu();
        }
    }
    EXPECT_THAT(names, Contains("Applications"));
    EXPECT_THAT(names, Contains("Mail, Inbox, focused"));
    EXPECT_THAT(names, Contains("Desktop 1, 3 windows"));
    EXPECT_THAT(names, Contains("Show Desktop"));
}

TEST_F(BarInteractionTest, themesLieOverTheBlurUnlessTheUserWantsNoTransparency)
{
    auto& settings = runtime->userSettings();
    settings.setTheme(BarTheme::aero);
    desktop.drain();
    EXPECT_TRUE(panel().effect());
    EXPECT_THAT(panel().render().drawn<DrawnGradient>(), SizeIs(2));
    for (bool isDark : {true, false}) {
        desktop.program().setAppearance({.isDark = isDark, .reduceTransparency = true});
        desktop.drain();
        EXPECT_FALSE(panel().effect());
        EXPECT_THAT(panel().render().drawn<DrawnGradient>(), IsEmpty());
        EXPECT_EQ(panel().render().drawn<DrawnFill>().front().color.red < 0.5, isDark);
    }
    desktop.program().setAppearance({.increaseContrast = true});
    desktop.drain();
    EXPECT_FALSE(panel().effect());
    auto ground = panel().render().drawn<DrawnFill>().front();
    EXPECT_EQ(ground.rect, panel().bounds()) << "and not only where no blur is possible";
    EXPECT_EQ(ground.color.alpha, 1);
}

TEST_F(BarInteractionTest, titlesFollowTheSettings)
{
    auto& settings = runtime->userSettings();
    settings.setShowWindowNamesInChips(false);
    desktop.drain();
    EXPECT_THAT(chipTexts(), ElementsAre("Mail", "Mail", "Editor"));
    settings.setShowChipTitles(false);
    desktop.drain();
    EXPECT_THAT(chipTexts(), IsEmpty());
}

// Faults: a bare ellipsis where there is room for no letter; a group among them without a title, or
// alone with one.
TEST_F(BarInteractionTest, titlesGoForAllAlikeWhereThereIsNoRoomForLetters)
{
    runtime->userSettings().setGroupWindowsByApp(true);
    runtime->userSettings().setBarSize(BarSize::xl);
    settle();
    EXPECT_THAT(chipTexts(), SizeIs(testing::Ge(2)));
    for (int i = 0; i < 30; ++i) {
        auto name = "App " + std::to_string(i);
        desktop.open(desktop.launch({.name = name, .bundleIdentifier = name}), {.title = "Window"});
        settle();
        leave();
        auto width = content().chipFrames().front().second.width;
        auto titles = std::ranges::count(panel().render().texts(), "Window");
        auto size = BarMetrics::of(BarSize::xl);
        if (titles > 0) {
            EXPECT_EQ(titles, i + 1);
            EXPECT_GT(width - ChipView::iconWidth(size), size.chipHeight) << "some letters wide";
        }
    }
    EXPECT_EQ(std::ranges::count(panel().render().texts(), "Window"), 0);
}

}
