// The list of open windows as its user meets it: what it lists and in which order, and what keys
// and clicks do in it.
#include <gmock/gmock.h>

#include "Tests/Support/LauncherFixture.h"

namespace quorvel::test {

using namespace testing;

/// Four windows of three applications on two spaces; the user was in them from last to first.
struct WindowFinderTest : LauncherFixture {
    ProcessID mail = desktop.launch({.name = "Post", .bundleIdentifier = "mail"});
    ProcessID editor = desktop.launch({.name = "Scribe", .bundleIdentifier = "editor"});
    ProcessID terminal = desktop.launch({.name = "Terminal", .bundleIdentifier = "terminal"});
    WindowID inbox = desktop.open(mail, {.title = "Inbox"});
    WindowID draft = desktop.open(mail, {.title = "Résumé draft"});
    WindowID notes = desktop.open(editor, {.title = "Notes"});
    WindowID shell = desktop.open(terminal, {.title = "draft.txt", .spaces = {SpaceID{2}}});

    void SetUp() override
    {
        startWithApplications();
        for (auto [window, application] :
            {std::pair{notes, editor}, {draft, mail}, {inbox, mail}}) {
            desktop.focus(window);
            desktop.activate(application);
            settle();
        }
    }
    void open()
    {
        EXPECT_EQ(desktop.control().send({"--find"})->exitStatus, 0);
        desktop.drain();
    }
    const WindowFinderPanel* finder()
    {
        auto* panel = manager().launcherPanel(LauncherKind::windows);
        return panel ? &BarViews::finderPanel(*panel) : nullptr;
    }
    /// The titles of the rows in sight: * selected.
    std::string titles()
    {
        std::string text;
        if (!finder())
            return "closed";
        for (auto& row : finder()->content().rowPlaces())
            text += (text.empty() ? "" : "|") + std::string{row.isSelected ? "*" : ""}
                + chip(row.window)->windowTitle;
        return text;
    }
    void pressWithControl(KeyCode code, bool isRepeat = false)
    {
        launcher().pressKey(
            {.keyCode = code, .modifiers = KeyModifier::control, .isRepeat = isRepeat});
        settle();
    }
    Point rowOf(WindowID window)
    {
        for (auto& row : finder()->content().rowPlaces()) {
            if (row.window == window)
                return row.frame.centre();
        }
        return {};
    }
};

// Faults: another order than that of use; Return leads to where one is already; one of several
// words is enough, or their order matters; accents and case matter; a letter inside a word beats
// the beginning of one; a query that finds nothing leaves old rows.
TEST_F(WindowFinderTest, findsByWordsOfTitleAndApplicationInTheOrderOfUse)
{
    open();
    EXPECT_EQ(titles(), "Inbox|*Résumé draft|Notes|draft.txt");
    type("draft");
    EXPECT_EQ(titles(), "*Résumé draft|draft.txt");
    type(" TERM");
    EXPECT_EQ(titles(), "*draft.txt");
    key(KeyCode::escape);
    EXPECT_EQ(titles(), "Inbox|*Résumé draft|Notes|draft.txt");
    type("po resume");
    EXPECT_EQ(titles(), "*Résumé draft");
    key(KeyCode::escape);
    type("o");
    EXPECT_EQ(titles(), "*Inbox|Résumé draft|Notes") << "all inside, by use";
    key(KeyCode::escape);
    type("t");
    EXPECT_EQ(titles(), "*draft.txt|Inbox|Résumé draft|Notes") << "Terminal, txt first";
    type("q");
    EXPECT_EQ(titles(), "");
    EXPECT_TRUE(says("No windows matching \"tq\""));
    key(KeyCode::escape);
    key(KeyCode::escape);
    EXPECT_EQ(titles(), "closed");
}

// Faults: a window on another space is asked before its space is shown, or the focus goes back to
// what had it before the switch; a minimised window stays so.
TEST_F(WindowFinderTest, returnGoesToTheWindowWhereverItIs)
{
    open();
    key(KeyCode::enter);
    settle();
    EXPECT_EQ(titles(), "closed");
    EXPECT_EQ(model().focusedWindowID.value(), draft);

    open();
    type("shell");
    EXPECT_EQ(titles(), "");
    key(KeyCode::escape);
    type("term");
    key(KeyCode::enter);
    settle();
    EXPECT_EQ(current(), SpaceID{2});
    EXPECT_EQ(desktop.workspace().frontmostApplication(), terminal);
    EXPECT_EQ(model().focusedWindowID.value(), shell);

    desktop.minimise(notes);
    settle();
    open();
    EXPECT_TRUE(says("Scribe \u00B7 Desktop 1 \u00B7 Minimised"));
    launcher().click(rowOf(notes));
    settle();
    EXPECT_EQ(current(), SpaceID{1});
    EXPECT_EQ(model().focusedWindowID.value(), notes);
    EXPECT_FALSE(desktop.window(notes).isMinimized);
}

// Faults: the list closes with the window; rows change places under the hand; a key that is held
// closes one window after the other; the key erases text instead, or text keys close windows; a
// button that is down closes what comes under it.
TEST_F(WindowFinderTest, controlDeleteClosesAndTheRestHoldsStill)
{
    open();
    pressWithControl(KeyCode::forwardDelete);
    EXPECT_EQ(titles(), "Inbox|*Notes|draft.txt");
    pressWithControl(KeyCode::forwardDelete, true);
    key(KeyCode::forwardDelete);
    EXPECT_EQ(titles(), "Inbox|*Notes|draft.txt");
    type("in");
    pressWithControl(KeyCode::backspace);
    EXPECT_EQ(titles(), "Inbox|*Notes|draft.txt");
    auto fresh = desktop.open(editor, {.title = "Fresh"});
    desktop.focus(fresh);
    settle();
    EXPECT_EQ(titles(), "Inbox|*Notes|draft.txt|Fresh");
    launcher().click(rowOf(inbox), PointerButton::middle);
    settle();
    EXPECT_EQ(titles(), "*Notes|draft.txt|Fresh");
    auto first = rowOf(notes);
    launcher().press(first, PointerButton::middle);
    desktop.close(notes);
    settle();
    launcher().release(first, PointerButton::middle);
    settle();
    EXPECT_EQ(titles(), "*draft.txt|Fresh");
    for (int left = 2; left > 0; --left)
        pressWithControl(KeyCode::forwardDelete);
    EXPECT_TRUE(says("No open windows"));
}

// Faults: the display goes to the window instead; it comes without the focus, or stays minimised;
// the entry is offered for what is here, or on a space of its own; a held key brings one after the
// other; the keys are not told.
TEST_F(WindowFinderTest, shiftReturnBringsTheWindowHere)
{
    desktop.minimise(shell);
    settle();
    open();
    type("term");
    launcher().pressKey(
        {.keyCode = KeyCode::enter, .modifiers = KeyModifier::shift, .isRepeat = true});
    EXPECT_EQ(titles(), "*draft.txt");
    launcher().pressKey({.keyCode = KeyCode::enter, .modifiers = KeyModifier::shift});
    settle();
    EXPECT_EQ(titles(), "closed");
    EXPECT_EQ(desktop.window(shell).spaces, std::set{SpaceID{1}});
    EXPECT_EQ(current(), SpaceID{1});
    EXPECT_EQ(model().focusedWindowID.value(), shell);
    EXPECT_FALSE(desktop.window(shell).isMinimized);

    desktop.setGivesSpaceHints(true);
    desktop.moveToSpace(inbox, SpaceID{3});
    settle();
    open();
    launcher().click(rowOf(draft), PointerButton::secondary);
    desktop.drain();
    EXPECT_THAT(desktop.surfaces().menuTitles(), ElementsAre("Activate", "Close"));
    EXPECT_TRUE(desktop.surfaces().menu()->render().text("⌃⌦"));
    desktop.surfaces().closeMenu();
    desktop.drain();
    launcher().click(rowOf(inbox), PointerButton::secondary);
    desktop.drain();
    EXPECT_TRUE(desktop.surfaces().menu()->render().text("⇧↩"));
    EXPECT_TRUE(desktop.surfaces().chooseMenuItem("Move Here"));
    settle();
    EXPECT_EQ(desktop.window(inbox).spaces, std::set{SpaceID{1}});
    EXPECT_EQ(model().focusedWindowID.value(), inbox);

    open();
    launcher().pressKey({.keyCode = KeyCode::enter, .modifiers = KeyModifier::shift});
    settle();
    EXPECT_EQ(model().focusedWindowID.value(), shell) << "it is here already";
}

// Faults: one that the server does not move gets the focus all the same, which leads away; one that
// is carried comes without it.
TEST_F(WindowFinderTest, aWindowThatCannotComeLeadsNowhere)
{
    server().refuseMoves(true);
    auto bring = [this] {
        open();
        type("term");
        launcher().pressKey({.keyCode = KeyCode::enter, .modifiers = KeyModifier::shift});
        settle();
        desktop.advance(seconds(5));
    };
    bring();
    EXPECT_EQ(desktop.window(shell).spaces, std::set{SpaceID{2}});
    EXPECT_NE(model().focusedWindowID.value(), shell);

    desktop.activateSpace(SpaceID{1});
    settle();
    server().setDesktopHotKey(118, {.keys = {18, 1}}, SpaceID{1});
    server().setDesktopHotKey(119, {.keys = {19, 1}}, SpaceID{2});
    bring();
    EXPECT_EQ(desktop.window(shell).spaces, std::set{SpaceID{1}});
    EXPECT_EQ(current(), SpaceID{1});
    EXPECT_EQ(model().focusedWindowID.value(), shell);
}

// Faults: two panels at once; the button of the bar closes the windows and opens nothing; a second
// request opens anew.
TEST_F(WindowFinderTest, itAndTheLauncherTakeEachOthersPlace)
{
    open();
    auto bar = panel().frame();
    EXPECT_EQ(launcher().frame(), (Rect{bar.x + 5, bar.maxY() + 8, 440, 480}));
    clickButton();
    EXPECT_EQ(titles(), "closed");
    EXPECT_THAT(rows(), StartsWith("*Calendar"));
    open();
    EXPECT_EQ(manager().launcherPanel(), nullptr);
    EXPECT_THAT(titles(), StartsWith("Inbox"));
    open();
    EXPECT_FALSE(isOpen());
}

// Faults: pictures of rows out of sight are taken; a late one is not shown; the icon stays beside
// the picture; a screen reader hears the title alone.
TEST_F(WindowFinderTest, showsPicturesAndIsReadAloud)
{
    desktop.screenCapture().setCaptures(FakeScreenCapture::Answers::once, seconds(0.3));
    open();
    EXPECT_THAT(desktop.screenCapture().capturedWindows(), Contains(inbox));
    auto pictures = [this] {
        int count = 0;
        for (auto& image : launcher().render().drawn<DrawnImage>())
            count += dynamic_cast<const FakePicture*>(image.image.get()) != nullptr;
        return count;
    };
    EXPECT_EQ(pictures(), 0);
    desktop.advance(seconds(1));
    EXPECT_GE(pictures(), 3);

    auto elements = launcher().elements();
    auto row = std::ranges::find_if(
        elements, [&](auto* each) { return each->accessibleID() == displayItemID(draft); });
    ASSERT_NE(row, elements.end());
    EXPECT_EQ((*row)->accessibleState().name, "Résumé draft, Post, Desktop 1");
    EXPECT_TRUE((*row)->accessibleState().isSelected);
    EXPECT_THAT((*row)->accessibleState().actions, ElementsAre("Activate", "Close", "Show Menu"));
    (*row)->performAccessibleAction(0);
    settle();
    EXPECT_EQ(model().focusedWindowID.value(), draft);
}

}
