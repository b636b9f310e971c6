// What the pointer, the keys, a screen reader and the screen itself do to an open menu.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Quorvel/Views/Menu/MenuPlacement.h"
#include "Quorvel/Views/Menu/Menus.h"
#include "Tests/Support/FakeDesktop.h"

namespace quorvel::test {

using namespace testing;

namespace {

struct MenuTest : Test {
    struct Bar final : SurfaceClient {
        void paint(Canvas&, const Rect&) override { }
        void pointerEvent(const PointerEvent& event) override
        {
            presses += event.action == PointerAction::pressed;
        }
        void pointerLost() override { }
        void scrollEvent(const ScrollEvent&) override { }
        void surfaceDidResize(Size) override { }
        bool keyPressed(const KeyEvent&) override { return true; }
        void keyboardDidChange(bool) override { ++keyboardChanges; }
        int presses = 0;
        int keyboardChanges = 0;
    };

    FakeDesktop desktop;
    Bar bar;
    std::unique_ptr<FakePanel> panel = placedPanel({0, 0, 1440, 40});
    std::vector<std::string> log;
    Menus menus{desktop.platform()};

    std::unique_ptr<FakePanel> placedPanel(const Rect& frame)
    {
        PanelOptions options{.space = SpaceID{1}, .display = {}, .title = "Bar"};
        auto made = std::make_unique<FakePanel>(desktop, desktop.surfaces(), options, bar);
        made->setFrame(frame);
        made->orderFront();
        return made;
    }
    void setScreen(double width, double height)
    {
        auto displays = desktop.model().displays;
        displays.front().frame = {0, 0, width, height};
        desktop.setDisplays(displays);
        desktop.drain();
        panel->setFrame({0, 0, width, 40});
    }
    MenuItem item(const std::string& title)
    {
        return {title, true, [=, this] { say(title); }};
    }
    Menu sample()
    {
        MenuItem more{"Gamma", true, {}};
        more.submenu = {item("One"), item("Two"), {"Zwei", true, {}, true}};
        more.submenu.back().kind = MenuItemKind::toggle;
        return {item("Alpha"), {"Beta", false, {}}, {}, more, item("Alto")};
    }
    Menu choices(int count, int current)
    {
        Menu menu;
        for (int i = 0; i < count; ++i) {
            menu.push_back(item("Desktop " + std::to_string(i)));
            menu.back().kind = MenuItemKind::choice;
            menu.back().isChecked = i == current;
        }
        return menu;
    }
    void say(const std::string& text) { log.push_back(text); }
    /// As a press at this place of the bar does.
    void open(Menu menu, Point at = {100, 20})
    {
        panel->press(at, PointerButton::secondary);
        menus.popUp(
            *panel, std::move(menu), {at.x - 20, 0, 40, 40}, [this](auto) { say("closed"); });
        desktop.drain();
    }
    FakePanel& top() { return *desktop.surfaces().menu(); }
    bool isOpen() { return desktop.surfaces().menu() != nullptr; }
    std::size_t depth() { return desktop.surfaces().menus().size(); }
    void key(KeyCode code)
    {
        top().pressKey(code);
        desktop.drain();
    }
    void type(const std::string& text)
    {
        for (char letter : text)
            top().pressKey(KeyEvent{.keyCode = KeyCode::unknown, .characters = {letter}});
    }
    std::vector<std::string> logged()
    {
        desktop.drain();
        return std::exchange(log, {});
    }
    static std::vector<AccessibleElement*> rows(const FakePanel& menu)
    {
        return menu.accessibleRoot()->accessibleChildren().front()->accessibleChildren();
    }
    /// In the deepest menu; empty if there is none.
    std::string highlighted()
    {
        for (auto* row : rows(*desktop.surfaces().menus().back())) {
            if (row->accessibleState().hasKeyFocus)
                return row->accessibleState().name;
        }
        return {};
    }
    /// Where it is seen, in the menu that is open.
    Rect place(const std::string& title)
    {
        auto root = top().frame().flipped(desktop.model().flipHeight());
        for (auto& entry : menus.entries()) {
            if (entry.title == title)
                return entry.frame.translated(-root.x, -root.y);
        }
        return {};
    }
    void moveTo(const std::string& title) { top().movePointer(place(title).centre()); }
    void release(const std::string& title)
    {
        top().release(place(title).centre(), PointerButton::secondary);
    }
};

}

// Faults: a step onto what cannot be chosen; a submenu with no way in or back, or with the arrows
// of the other direction; an action before the menu has gone, twice, or after Escape.
TEST_F(MenuTest, isWalkedWithTheKeys)
{
    for (bool isRightToLeft : {false, true}) {
        desktop.program().setAppearance({.isRightToLeft = isRightToLeft});
        auto forwards = isRightToLeft ? KeyCode::left : KeyCode::right;
        auto back = isRightToLeft ? KeyCode::right : KeyCode::left;
        open(sample());
        EXPECT_EQ(highlighted(), "");
        key(KeyCode::down);
        EXPECT_EQ(highlighted(), "Alpha");
        key(KeyCode::down);
        EXPECT_EQ(highlighted(), "Gamma");
        key(back);
        EXPECT_EQ(depth(), 1U);
        key(forwards);
        EXPECT_EQ(highlighted(), "One");
        key(KeyCode::up);
        EXPECT_EQ(highlighted(), "Zwei");
        key(back);
        EXPECT_EQ(depth(), 1U);
        key(KeyCode::enter);
        EXPECT_EQ(highlighted(), "One");
        key(KeyCode::escape);
        EXPECT_EQ(highlighted(), "Gamma");
        key(KeyCode::end);
        EXPECT_EQ(highlighted(), "Alto");
        key(KeyCode::home);
        key(KeyCode::pageDown);
        EXPECT_EQ(highlighted(), "Gamma");
        key(KeyCode::pageDown);
        EXPECT_EQ(highlighted(), "Alto");
        key(KeyCode::space);
        EXPECT_THAT(logged(), ElementsAre("closed", "Alto"));
        EXPECT_FALSE(isOpen());
    }
    open(sample());
    key(KeyCode::up);
    key(KeyCode::escape);
    EXPECT_THAT(logged(), ElementsAre("closed"));
}

// Faults: a letter that finds what it does not begin, always the first, or never the one with a
// space.
TEST_F(MenuTest, isSearchedByTyping)
{
    open({item("Alpha"), item("Alto"), item("New Folder"), item("New Window")});
    type("a");
    EXPECT_EQ(highlighted(), "Alpha");
    type("a");
    EXPECT_EQ(highlighted(), "Alto");
    desktop.advance(MenuTyping::kPause);
    type("alp");
    EXPECT_EQ(highlighted(), "Alpha");
    type("z");
    EXPECT_EQ(highlighted(), "Alpha");
    desktop.advance(MenuTyping::kPause);
    type("new");
    top().pressKey(KeyEvent{.keyCode = KeyCode::space, .characters = " "});
    type("w");
    EXPECT_EQ(highlighted(), "New Window");
    top().pressKey(KeyEvent{.characters = "a", .modifiers = KeyModifier::control});
    EXPECT_EQ(highlighted(), "New Window") << "a shortcut is no letter";
    desktop.advance(MenuTyping::kPause);
    top().pressKey(KeyEvent{.keyCode = KeyCode::space, .characters = " "});
    EXPECT_THAT(logged(), ElementsAre("closed", "New Window"));
}

// Faults: the click that opens a menu chooses from it, however the hand shakes; a drag that ends on
// an entry does not choose, or one that ends outside does; what cannot be chosen closes the menu; a
// press elsewhere goes on to what is there.
TEST_F(MenuTest, takesADragAndTwoClicks)
{
    open(sample());
    panel->release({100, 20}, PointerButton::secondary);
    top().movePointer({10, top().bounds().maxY() - 10}); // some points above the press
    EXPECT_TRUE(isOpen());
    top().click(place("Beta").centre());
    top().click(rows(top())[2]->accessibleFrame().centre());
    EXPECT_TRUE(isOpen());
    top().click(place("Alto").centre());
    EXPECT_THAT(logged(), ElementsAre("closed", "Alto"));

    open(sample());
    moveTo("Alpha");
    release("Alpha");
    EXPECT_THAT(logged(), ElementsAre("closed", "Alpha"));

    open(sample(), {100, 4}); // close to the menu's edge, by a hand that moves as it clicks
    top().movePointer({10, top().bounds().maxY() - 10});
    top().release({10, top().bounds().maxY() - 10}, PointerButton::secondary);
    EXPECT_TRUE(isOpen());
    panel->click({700, 20});
    EXPECT_THAT(logged(), ElementsAre("closed"));
    EXPECT_EQ(bar.presses, 3) << "those that opened a menu";

    open(sample());
    moveTo("Alpha");
    panel->movePointer({100, 20});
    EXPECT_EQ(highlighted(), "");
    panel->release({100, 20}, PointerButton::secondary);
    EXPECT_THAT(logged(), ElementsAre("closed"));
}

// Faults: a second button, pressed or released while the first is down, chooses or closes the menu;
// after a release that was not heard of, no button does anything.
TEST_F(MenuTest, heedsOneButtonAtATime)
{
    open(sample());
    top().click(place("Alpha").centre());
    panel->click({700, 20});
    EXPECT_TRUE(isOpen());
    moveTo("Alto");
    release("Alto");
    EXPECT_THAT(logged(), ElementsAre("closed", "Alto"));

    open(sample());
    panel->release({100, 20}, PointerButton::secondary);
    top().press(place("Alpha").centre());
    top().click(place("Alto").centre(), PointerButton::middle);
    EXPECT_TRUE(isOpen());
    top().release(place("Alpha").centre());
    EXPECT_THAT(logged(), ElementsAre("closed", "Alpha"));

    open(sample());
    moveTo("Alpha");
    panel->releaseUnheard(PointerButton::secondary);
    top().click(place("Alto").centre());
    EXPECT_THAT(logged(), ElementsAre("closed", "Alto"));
}

// Faults: a submenu that opens in passing, or closes under a pointer that goes to it across other
// rows, in the steps of a slow hand; one that stays while the pointer rests elsewhere.
TEST_F(MenuTest, opensSubmenusUnderAPointerThatRests)
{
    open(sample());
    panel->release({100, 20}, PointerButton::secondary);
    moveTo("Gamma");
    moveTo("Alto");
    desktop.advance(seconds(1));
    EXPECT_EQ(depth(), 1U);
    moveTo("Gamma");
    desktop.advance(seconds(0.2));
    ASSERT_EQ(depth(), 2U);

    auto at = place("Gamma").centre();
    auto target = place("Zwei").centre();
    while (at.x < target.x || at.y < target.y) {
        at.x += at.x < target.x ? 2 : 0;
        top().movePointer(at);
        at.y += at.y < target.y ? 1 : 0;
        top().movePointer(at);
        ASSERT_EQ(depth(), 2U) << at.x << ", " << at.y;
    }
    EXPECT_EQ(highlighted(), "Zwei");
    moveTo("Alpha");
    desktop.advance(seconds(0.4));
    EXPECT_EQ(depth(), 1U);
    EXPECT_EQ(highlighted(), "Alpha");

    top().click(place("Gamma").centre());
    ASSERT_EQ(depth(), 2U);
    top().click(place("Two").centre());
    EXPECT_THAT(logged(), ElementsAre("closed", "Two"));
}

// Faults: a long list that opens far from the current choice; an entry that neither keys nor
// pointer bring into sight on a screen of whatever size; rows that scroll on, or a timer that runs
// on, after the last one has been reached.
TEST_F(MenuTest, scrollsWhereTheScreenIsLower)
{
    open(choices(100, 80));
    EXPECT_EQ(highlighted(), "Desktop 80");
    EXPECT_TRUE(top().bounds().inset(0, 20).contains(place("Desktop 80")));
    key(KeyCode::pageUp);
    EXPECT_FALSE(place(highlighted()).isEmpty());
    EXPECT_TRUE(place("Desktop 80").isEmpty());
    top().movePointer({50, top().bounds().maxY() - 2});
    desktop.advance(seconds(30));
    EXPECT_EQ(place("Desktop 99").height, MenuMetrics::rowHeight);
    EXPECT_EQ(desktop.dispatch().pendingTimers(), 0U);
    top().scroll(place("Desktop 99").centre(), 40);
    EXPECT_EQ(place("Desktop 0").height, MenuMetrics::rowHeight);
    key(KeyCode::escape);

    for (auto height : {100, 50}) {
        setScreen(2 * height, height);
        open(choices(6, -1), {20, 20});
        EXPECT_TRUE((Rect{0, 0, 2.0 * height, 1.0 * height}).contains(top().frame()));
        std::size_t inSight = 0;
        for (int i = 0; i < 6; ++i) {
            key(KeyCode::down);
            const auto canvas = top().render();
            const auto* const text = canvas.text("Desktop " + std::to_string(i));
            ASSERT_TRUE(text);
            EXPECT_GT(text->visible.height, MenuMetrics::fontSize) << i;
            inSight = std::max(inSight, menus.entries().size());
        }
        EXPECT_GE(inSight, height == 100 ? 4U : 2U);
        key(KeyCode::escape);
    }
}

// Faults: a menu that outlives its screen and takes the next click; a keyboard that is not given
// back, or whose holder hears of a menu in between; a menu that keeps half of its old look.
TEST_F(MenuTest, goesWithItsScreenAndFollowsTheLook)
{
    panel->takeKeyboard();
    open(sample());
    EXPECT_FALSE(panel->pressKey(KeyCode::down));
    top().forgetPaints();
    desktop.program().setAppearance({.isDark = true});
    desktop.drain();
    ASSERT_THAT(top().paints(), SizeIs(1));
    EXPECT_EQ(top().paints().front().damage, top().bounds());
    desktop.addDisplay({DisplayNumber{9}, "other", {1440, 0, 800, 600}});
    desktop.drain();
    EXPECT_TRUE(isOpen());
    setScreen(1000, 700);
    EXPECT_FALSE(isOpen());
    EXPECT_THAT(logged(), ElementsAre("closed"));
    auto before = bar.presses;
    panel->press({700, 20});
    EXPECT_EQ(bar.presses, before + 1);
    EXPECT_TRUE(panel->pressKey(KeyCode::down));
    EXPECT_EQ(bar.keyboardChanges, 1);
}

// Faults: what a reader says of a mark, a submenu or what is disabled; a press of its that does
// nothing; texts under the marks, or arrows that point into the menu, where reading goes left.
TEST_F(MenuTest, isReadPressedAndMirrored)
{
    desktop.program().setAppearance({.isRightToLeft = true});
    auto menu = sample();
    menu.push_back({"On", true, {}, true, {}, MenuItemKind::choice});
    open(menu, {700, 20});
    auto entries = rows(top());
    auto state = [&](std::size_t row) { return entries[row]->accessibleState(); };
    EXPECT_EQ(top().accessibleRoot()->accessibleChildren().front()->accessibleState().role,
        AccessibleRole::menu);
    EXPECT_EQ(state(0).role, AccessibleRole::menuItem);
    EXPECT_FALSE(state(1).isEnabled);
    EXPECT_FALSE(entries[1]->performAccessibleAction(0));
    EXPECT_EQ(state(2).role, AccessibleRole::separator);
    EXPECT_TRUE(state(3).opensMenu);
    EXPECT_EQ(state(5).role, AccessibleRole::radioMenuItem);
    EXPECT_TRUE(state(5).isChecked);

    auto drawn = top().render();
    auto symbols = drawn.drawn<DrawnSymbol>();
    ASSERT_THAT(symbols, SizeIs(2));
    EXPECT_EQ(symbols[0].symbol, Symbol::chevronLeft);
    for (auto& text : drawn.drawn<DrawnText>()) {
        EXPECT_LT(symbols[0].rect.maxX(), text.rect.x) << text.text;
        EXPECT_GT(symbols[1].rect.x, text.rect.maxX()) << text.text;
    }
    EXPECT_TRUE(entries[3]->performAccessibleAction(0));
    desktop.drain();
    ASSERT_EQ(depth(), 2U);
    EXPECT_LT(desktop.surfaces().menus()[1]->frame().x, top().frame().x);
    auto below = rows(*desktop.surfaces().menus()[1]);
    EXPECT_EQ(below[2]->accessibleState().role, AccessibleRole::checkMenuItem);
    EXPECT_TRUE(below[1]->performAccessibleAction(0));
    EXPECT_THAT(logged(), ElementsAre("closed", "Two"));
}

// Faults: keys lie under a title or an arrow, or in no column; those of another system; they stay
// where they are when reading goes left.
TEST_F(MenuTest, tellsTheKeysThatDoTheSame)
{
    auto menu = sample();
    menu[0].keys = MenuKeys{KeyCode::enter, KeyModifier::shift};
    menu[4].keys = MenuKeys{KeyCode::forwardDelete, KeyModifier::control};
    for (bool isRightToLeft : {false, true}) {
        desktop.program().setAppearance({.isRightToLeft = isRightToLeft});
        open(menu, {700, 20});
        auto drawn = top().render();
        auto* title = drawn.text("Alto");
        auto* keys = drawn.text("⌃⌦");
        auto* otherKeys = drawn.text("⇧↩");
        ASSERT_TRUE(title && keys && otherKeys);
        EXPECT_EQ(keys->style.alignment, TextAlignment::trailing);
        EXPECT_EQ(keys->rect.x, otherKeys->rect.x);
        EXPECT_FALSE(keys->rect.intersects(title->rect));
        EXPECT_EQ(keys->rect.x > title->rect.x, !isRightToLeft);
        for (auto& symbol : drawn.drawn<DrawnSymbol>())
            EXPECT_FALSE(
                keys->rect.intersects(symbol.rect.translated(0, keys->rect.y - symbol.rect.y)));
        top().pressKey(KeyCode::escape);
        desktop.drain();
    }
}

// Fault: views are drawn where the system has menus of its own.
TEST_F(MenuTest, isLeftToASystemThatDrawsMenus)
{
    struct : NativeMenus {
        void popUpMenu(
            PanelSurface&, Menu menu, const Rect&, std::function<void(MenuEnding)>) override
        {
            titles = menu.size();
        }
        void closeMenu() override { titles = 0; }
        std::size_t titles = 0;
    } native;
    desktop.surfaces().setNativeMenus(&native);
    open(sample());
    EXPECT_EQ(native.titles, 5U);
    EXPECT_FALSE(isOpen());
    menus.close();
    EXPECT_EQ(native.titles, 0U);
}

// Faults: a menu beyond the edge of its screen, over what it was opened from, or below it although
// there is more room above.
TEST(MenuPlacement, keepsMenusOnTheirScreen)
{
    Rect screen{100, 50, 1000, 700};
    Rect atBottom{200, 710, 160, 40};
    EXPECT_EQ(placeMenu({150, 300}, atBottom, screen, false), (Rect{200, 410, 150, 300}));
    EXPECT_EQ(placeMenu({150, 300}, atBottom, screen, true).maxX(), atBottom.maxX());
    EXPECT_EQ(placeMenu({150, 300}, {1050, 710, 50, 40}, screen, false).maxX(), 1100);
    EXPECT_EQ(placeMenu({150, 300}, {200, 50, 160, 40}, screen, false).y, 90); // a bar on top
    EXPECT_EQ(placeMenu({150, 900}, atBottom, screen, false), (Rect{200, 50, 150, 660})); // cut

    Rect row{200, 300, 140, 26};
    EXPECT_EQ(placeSubmenu({150, 100}, row, 5, screen, false), (Rect{340, 295, 150, 100}));
    EXPECT_EQ(placeSubmenu({150, 100}, row, 5, screen, true).x, 340); // no room on its side
    EXPECT_EQ(placeSubmenu({150, 100}, {900, 720, 190, 26}, 5, screen, false),
        (Rect{750, 650, 150, 100}));
}

}
