// What the pins of the bar know of their applications, and how they come and go.
#include "Quorvel/Core/BadgeService.h"
#include "Quorvel/Views/Kit/Palette.h"
#include "Tests/Support/BarFixture.h"

namespace quorvel::test {

namespace {

struct BarPinTest : ThreeWindows {
    ProcessID browser{};
    WindowID page{};

    void SetUp() override
    {
        desktop.setGivesSpaceHints(true);
        pin("player");
        pin("browser");
    }
    void openBrowserOn(SpaceID space)
    {
        browser = desktop.launch({.name = "Browser", .bundleIdentifier = "browser"});
        page = desktop.open(browser, {.title = "Page", .spaces = {space}});
        settle();
    }
    AccessibleElement* pinElement(const std::string& id)
    {
        for (auto* element : content().accessibleChildren()) {
            if (element->accessibleID() == "pin-" + id)
                return element;
        }
        return nullptr;
    }
    std::string spokenPin(const std::string& id)
    {
        auto* element = pinElement(id);
        return element ? element->accessibleState().name : std::string{};
    }
    Rect pinFrame(const std::string& wanted)
    {
        for (auto& [id, frame] : content().pinFrames()) {
            if (id == wanted)
                return frame;
        }
        ADD_FAILURE() << wanted << " has no pin";
        return {};
    }
    Point middleOfPin(const std::string& wanted) { return pinFrame(wanted).centre(); }
    /// The sizes of what is seen in a colour.
    std::vector<Size> drawnOnPin(const std::string& id, const Color& color)
    {
        std::vector<Size> sizes;
        for (auto& fill : panel().render().drawn<DrawnFill>()) {
            if (fill.color == color && pinFrame(id).contains(fill.rect.centre()))
                sizes.push_back(fill.visible.size());
        }
        return sizes;
    }
    void drag(Point from, Point to)
    {
        panel().press(from);
        panel().movePointer({(from.x + to.x) / 2, (from.y + to.y) / 2});
        panel().movePointer(to);
        panel().release(to);
        desktop.advance(seconds(0.3));
        leave();
        settle();
    }
    std::vector<std::string> pinned()
    {
        return manager().pinStore().pinnedAppIDs(PinDestination::bar);
    }
};

}

// Faults: a pin that says nothing of windows on other spaces, of a badge or of a request, or says
// it when it is no longer true.
TEST_F(BarPinTest, tellsWhatItsApplicationIsDoing)
{
    settle();
    runtime.reset();
    auto& services = desktop.launchServices();
    services.setAvailable(true);
    start();
    const auto palette = Palette::of({});
    EXPECT_EQ(spokenPin("browser"), "browser");
    openBrowserOn(SpaceID{2});
    EXPECT_EQ(spokenPin("browser"), "browser, open on another desktop");
    EXPECT_THAT(drawnOnPin("browser", palette.quietText), ElementsAre(testing::FieldsAre(6, 2)));
    EXPECT_THAT(drawnOnPin("player", palette.quietText), IsEmpty());
    EXPECT_THAT(drawnOnPin("browser", palette.progress), IsEmpty());

    services.statuses = {{"browser", "3", 0.5}};
    services.applications["browser"]
        = {.name = "Browser", .serial = "0x0-0x1", .pid = raw(browser), .wantsAttention = true};
    desktop.advance(BadgeService::pollInterval + seconds(2));
    EXPECT_EQ(spokenPin("browser"), "browser, 3 unread, open on another desktop, wants attention");
    EXPECT_THAT(panel().render().texts(), Contains("3"));
    auto width = pinFrame("browser").width;
    EXPECT_THAT(drawnOnPin("browser", palette.progress),
        ElementsAre(testing::FieldsAre(testing::DoubleNear(width / 2, 0.5), testing::Gt(10))));
    EXPECT_EQ(pinElement("browser")->accessibleState().progress, 0.5);

    services.statuses.clear();
    services.applications["browser"].wantsAttention = false;
    desktop.advance(BadgeService::pollInterval + seconds(2));
    desktop.close(page);
    desktop.terminate(browser);
    settle();
    EXPECT_EQ(spokenPin("browser"), "browser");
    EXPECT_THAT(drawnOnPin("browser", palette.quietText), IsEmpty());
    EXPECT_THAT(drawnOnPin("browser", palette.progress), IsEmpty());
}

// Faults: another instance is started although there is a window to go to; a window that is on
// another desktop cannot be had here.
TEST_F(BarPinTest, leadsToItsApplicationsWindowsOnOtherSpaces)
{
    openBrowserOn(SpaceID{2});
    panel().click(middleOfPin("browser"), PointerButton::secondary);
    desktop.drain();
    EXPECT_THAT(desktop.surfaces().menuTitles(), Contains("Page  \u2013  Desktop 2"));
    EXPECT_TRUE(desktop.surfaces().chooseMenuItem("Move Here"));
    settle();
    EXPECT_EQ(desktop.window(page).spaces, std::set{SpaceID{1}});

    desktop.moveToSpace(page, SpaceID{2});
    leave();
    settle();
    panel().click(middleOfPin("browser"));
    settle();
    EXPECT_EQ(current(), SpaceID{2});
    EXPECT_EQ(model().focusedWindowID.value(), page);
    EXPECT_THAT(desktop.workspace().opened(), IsEmpty());
}

// Faults: what was just clicked appears at the other end of the row, perhaps out of sight; a pin or
// a chip is lost, or the others move under the hand.
TEST_F(BarPinTest, itsChipTakesItsPlaceUntilThePointerLeaves)
{
    auto place = middleOfPin("player");
    auto other = middleOfPin("browser");
    auto before = chipFrame(inbox);
    panel().click(place);
    auto player = desktop.launch({.name = "Player", .bundleIdentifier = "player"});
    auto song = desktop.open(player, {.title = "Song"});
    settle();
    EXPECT_EQ(chipFrame(song)->centre(), place);
    EXPECT_FALSE(popup()) << "it would lie over the window that was asked for";
    EXPECT_THAT(pinIDs(), ElementsAre("browser"));
    EXPECT_EQ(middleOfPin("browser"), other);
    EXPECT_EQ(chipFrame(inbox), before);
    EXPECT_EQ(chipIDs().front(), displayItemID(song));

    desktop.close(song);
    settle();
    EXPECT_EQ(middleOfPin("player"), place);
    song = desktop.open(player, {.title = "Song"});
    settle();
    EXPECT_EQ(chipFrame(song)->centre(), place);
    // It can be dragged from there.
    panel().press(place);
    panel().movePointer(chipFrame(inbox)->centre());
    panel().movePointer(chipFrame(draft)->centre());
    panel().release(chipFrame(draft)->centre());
    desktop.advance(seconds(0.3));
    leave();
    settle();
    EXPECT_THAT(pinIDs(), ElementsAre("browser"));
    EXPECT_THAT(chipIDs(), SizeIs(4));
    EXPECT_LT(other.x, chipFrame(song)->x);
}

// Faults: a chip dropped on the pins changes its place instead, or pins what cannot be started; a
// pin let go above the bar stays, or one that only strayed off a little is gone.
TEST_F(BarPinTest, isMadeAndTakenOffByDragging)
{
    desktop.workspace().install("editor", "/Applications/editor");
    auto order = chipIDs();
    drag(middleOf(notes), middleOfPin("browser").translated(-8, 0));
    EXPECT_THAT(pinned(), ElementsAre("player", "editor", "browser"));
    EXPECT_EQ(chipIDs(), order);
    desktop.workspace().uninstall("/Applications/Mail.app");
    drag(middleOf(inbox), middleOfPin("browser").translated(-8, 0));
    EXPECT_THAT(pinned(), SizeIs(3)) << "nothing could start it again";

    auto player = middleOfPin("player");
    drag(player, player.translated(0, -30));
    EXPECT_THAT(pinned(), SizeIs(3));
    panel().press(player);
    panel().movePointer({player.x, -60});
    EXPECT_TRUE(panel().pressKey(KeyCode::escape));
    panel().release({player.x, -60});
    settle();
    EXPECT_THAT(pinned(), SizeIs(3));
    leave();
    drag(player, {player.x, -60});
    EXPECT_THAT(pinned(), ElementsAre("editor", "browser"));
    EXPECT_THAT(pinIDs(), ElementsAre("browser"));
}

}
