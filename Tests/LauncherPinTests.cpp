// The menu of the launcher's rows, pinning, and pins that are dragged.
#include <gmock/gmock.h>

#include "Quorvel/Views/AppListCoordinator.h"
#include "Tests/Support/LauncherFixture.h"

namespace quorvel::test {

using namespace testing;

using LauncherPinTest = LauncherFixture;

// MARK: The menu of a row

// Faults: a pin that cannot be taken back; a pin to the bar of what the bar cannot find; a menu
// that leaves the launcher below it without the keyboard.
TEST_F(LauncherPinTest, theMenuOfARowOpensAndPins)
{
    install("Script", false);
    startWithApplications();
    clickButton();
    openMenuOf("Maps");
    EXPECT_THAT(rows(), HasSubstr("*Maps"));
    EXPECT_THAT(desktop.surfaces().menuTitles(), ElementsAre("Open", "", "Pin to"));
    launcher().click({150, 20}); // beside the menu
    desktop.drain();
    EXPECT_FALSE(desktop.surfaces().menu());
    EXPECT_TRUE(isOpen());
    key(KeyCode::down);
    EXPECT_THAT(rows(), HasSubstr("*Music"));

    auto choose = [&](const std::string& id, const std::string& entry) {
        openMenuOf(id);
        EXPECT_TRUE(desktop.surfaces().chooseMenuItem("Pin to"));
        bool canBeChosen = desktop.surfaces().chooseMenuItem(entry);
        desktop.surfaces().closeMenu();
        desktop.drain();
        return canBeChosen;
    };
    EXPECT_TRUE(choose("Maps", "Bar"));
    EXPECT_TRUE(pins().isPinned("Maps", PinDestination::bar));
    EXPECT_TRUE(choose("Maps", "Bar"));
    EXPECT_FALSE(pins().isPinned("Maps", PinDestination::bar));
    EXPECT_FALSE(choose(pathOf("Script"), "Bar"));
    EXPECT_TRUE(choose(pathOf("Script"), "App menu"));
    EXPECT_THAT(rows(), StartsWith("*[" + pathOf("Script") + "]"));

    openMenuOf(pathOf("Script"), AppListSection::pinned);
    EXPECT_THAT(desktop.surfaces().menuTitles(), ElementsAre("Open", "", "Unpin"));
    EXPECT_TRUE(desktop.surfaces().chooseMenuItem("Unpin"));
    desktop.drain();
    EXPECT_THAT(rows(), StartsWith("*Calendar"));

    key(KeyCode::down);
    key(KeyCode::menu);
    EXPECT_TRUE(desktop.surfaces().chooseMenuItem("Open"));
    desktop.drain();
    EXPECT_THAT(opened(), ElementsAre(pathOf("Mail")));
    EXPECT_FALSE(isOpen());
}

// Faults: a click elsewhere leaves the launcher open; a key, or a menu instead of the first, closes
// it because the pointer happens to be elsewhere.
TEST_F(LauncherPinTest, aPressElsewhereClosesTheMenuAndTheLauncher)
{
    startWithApplications();
    clickButton();
    panel().movePointer({700, 10});
    key(KeyCode::menu);
    ASSERT_TRUE(desktop.surfaces().menu());
    desktop.surfaces().closeMenu();
    desktop.drain();
    EXPECT_TRUE(isOpen());

    key(KeyCode::menu);
    elements().back()->performAccessibleAction(1);
    desktop.drain();
    EXPECT_TRUE(isOpen());
    ASSERT_TRUE(desktop.surfaces().menu());
    EXPECT_THAT(rows(), EndsWith("*Safari"));
    panel().click({700, 10});
    desktop.drain();
    EXPECT_FALSE(desktop.surfaces().menu());
    EXPECT_FALSE(isOpen());
}

// Faults: what the application offers is missing, runs together with the entries above, does
// something else, or leaves the launcher open.
TEST_F(LauncherPinTest, theMenuOfARowHasWhatTheApplicationOffers)
{
    desktop.workspace().offeredActions[pathOf("Mail")]
        = {{"compose", "New Message"}, {"fetch", "Get Mail"}};
    startWithApplications();
    clickButton();
    openMenuOf("Mail");
    EXPECT_THAT(desktop.surfaces().menuTitles(),
        ElementsAre("Open", "", "Pin to", "", "New Message", "Get Mail"));
    EXPECT_TRUE(desktop.surfaces().chooseMenuItem("Get Mail"));
    desktop.drain();
    EXPECT_THAT(opened(), ElementsAre("fetch of " + pathOf("Mail")));
    EXPECT_FALSE(isOpen());
}

// Fault: a system's own menu tells what was chosen after the launcher has gone, and is not heard.
TEST_F(LauncherPinTest, whatWasChosenOpensAlthoughTheLauncherHasGone)
{
    struct : NativeMenus {
        void popUpMenu(
            PanelSurface&, Menu menu, const Rect&, std::function<void(MenuEnding)>) override
        {
            entries = std::move(menu);
        }
        void closeMenu() override { }
        Menu entries;
    } native;
    desktop.surfaces().setNativeMenus(&native);
    startWithApplications();
    clickButton();
    openMenuOf("Mail");
    ASSERT_THAT(native.entries, Not(IsEmpty()));
    desktop.activateSpace(SpaceID{2});
    settle();
    ASSERT_FALSE(isOpen());
    native.entries.front().action();
    EXPECT_THAT(opened(), ElementsAre(pathOf("Mail")));
    desktop.surfaces().setNativeMenus(nullptr);
}

// Faults: a menu that outlives the launcher.
TEST_F(LauncherPinTest, takesItsMenuAlongWhenItCloses)
{
    startWithApplications();
    clickButton();
    openMenuOf("Maps");
    ASSERT_TRUE(desktop.surfaces().menu());
    desktop.activateSpace(SpaceID{2});
    desktop.drain();
    EXPECT_FALSE(isOpen());
    EXPECT_FALSE(desktop.surfaces().menu());
}

// MARK: Dragging pins

// Faults: a preview of another order than the drop makes; a pin that is not installed loses its
// place; a jump back to the top afterwards; one into its place instead of a fall; a screen reader
// that hears the numbers of before.
TEST_F(LauncherPinTest, aPinIsDraggedToAnotherPlaceAmongThePins)
{
    startWithApplications();
    pin({"Mail", "gone", "Maps", "Music", "also gone"});
    clickButton();
    auto mail = pinPlace("Mail");
    auto music = pinPlace("Music");
    launcher().press(mail);
    launcher().movePointer({mail.x, mail.y + 30}); // not yet past the middle of the next
    EXPECT_THAT(rows(), StartsWith("*[Mail] [Maps] "));
    launcher().movePointer({mail.x, mail.y + 40});
    EXPECT_THAT(rows(), StartsWith("[Maps] *[Mail] "));
    std::vector<std::size_t> numbers;
    for (auto* element : elements()) {
        if (auto position = element->accessibleState().position)
            numbers.push_back(position->index);
    }
    EXPECT_TRUE(std::ranges::is_sorted(numbers));
    EXPECT_EQ(pinned().front(), "Mail");
    launcher().movePointer({mail.x, music.y + 10});
    desktop.advance(seconds(1));
    EXPECT_EQ(pinPlace("Maps"), mail);
    launcher().release({mail.x, music.y + 10});
    desktop.advance(AppListTableView::Coordinator::kFallIntoPlace / 2);
    EXPECT_THAT(pinPlace("Mail").y, AllOf(Gt(music.y), Lt(music.y + 10)));
    desktop.advance(seconds(1));
    EXPECT_THAT(pinned(), ElementsAre("gone", "Maps", "Music", "Mail", "also gone"));
    EXPECT_EQ(pinPlace("Mail"), music);
    EXPECT_THAT(opened(), IsEmpty());

    launcher().press(music);
    launcher().movePointer({music.x, mail.y - 25}); // the heading
    launcher().release({music.x, mail.y - 25});
    desktop.advance(seconds(1));
    EXPECT_THAT(pinned(), ElementsAre("gone", "Mail", "Maps", "Music", "also gone"));
}

// Faults: a drop elsewhere, or Escape, leaves a new order, on the screen or in the store; Escape
// closes the launcher; rows of the other section are dragged; rows that change under the hand.
TEST_F(LauncherPinTest, aDragThatIsTakenBackChangesNothing)
{
    startWithApplications();
    pin({"Mail", "Maps", "Music"});
    clickButton();
    auto mail = pinPlace("Mail");
    auto music = pinPlace("Music");
    const auto before = rows();
    auto drag = [&](Point to) {
        launcher().press(mail);
        launcher().movePointer({mail.x, mail.y + 10});
        launcher().movePointer(music);
        launcher().movePointer(to);
        EXPECT_NE(rows(), before);
    };
    auto isAsBefore = [&] {
        desktop.advance(seconds(1));
        return rows() == before && pinned() == std::vector<std::string>{"Mail", "Maps", "Music"}
        && isOpen() && launcher().hasKeyboard() && opened().empty();
    };
    drag(music);
    launcher().movePointer(rowFrame("Notes").centre());
    launcher().release(rowFrame("Notes").centre());
    EXPECT_TRUE(isAsBefore());
    drag(music);
    launcher().movePointer({-200, music.y});
    launcher().release({-200, music.y});
    EXPECT_TRUE(isAsBefore());
    drag(music);
    key(KeyCode::escape);
    launcher().release(music);
    EXPECT_TRUE(isAsBefore());

    auto safari = rowFrame("Safari").centre();
    launcher().press(safari);
    launcher().movePointer(mail);
    launcher().release(mail);
    EXPECT_TRUE(isAsBefore());

    drag(music);
    pins().setPin("Maps", PinDestination::launcher, false);
    launcher().movePointer(mail);
    launcher().release(mail);
    desktop.advance(seconds(1));
    EXPECT_THAT(pinned(), ElementsAre("Mail", "Music"));
}

// Fault: pins beyond the lower end of the list cannot be reached in a drag.
TEST_F(LauncherPinTest, theListScrollsForAPinThatIsHeldAtItsEnd)
{
    names.clear();
    for (char letter = 'a'; letter < 'p'; ++letter)
        names.emplace_back(1, letter);
    startWithApplications();
    pin(names);
    clickButton();
    auto first = pinPlace("a");
    launcher().press(first);
    launcher().movePointer({first.x, first.y + 10});
    launcher().movePointer({first.x, 392});
    desktop.advance(seconds(5));
    launcher().release({first.x, 392});
    desktop.advance(seconds(1));
    EXPECT_EQ(pinned().back(), "a");
}

}
