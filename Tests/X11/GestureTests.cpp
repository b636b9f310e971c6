#include <algorithm>

#include <xkbcommon/xkbcommon-keysyms.h>

#include "Tests/X11/Support/DesktopFixture.h"
#include "Tests/X11/Support/Keyboard.h"

namespace quorvel::x11tests {

namespace {

using Names = std::vector<std::string>;

}

class Gestures : public UnderEachManager {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(bar.appears());
        for (const std::string title : {"a", "b", "c", "d"}) {
            client.open({.title = title});
            ASSERT_TRUE(eventually([&] { return chips().back() == title; }));
        }
        ASSERT_TRUE(settles(bar));
    }

    State::Panel panel() const { return bar.state().panel(); }
    /// The titles on the chips from left to right; an empty one first.
    Names chips() const
    {
        Names titles{""};
        const auto state = bar.state();
        for (const auto& chip : state.panel().chips) {
            for (const auto& window : state.windows) {
                if (chip.id == "s-" + std::to_string(window.id))
                    titles.push_back(window.title);
            }
        }
        return titles;
    }
    Frame chip(const std::string& title) const
    {
        const auto titles = chips();
        const auto found = std::find(titles.begin(), titles.end(), title);
        EXPECT_NE(found, titles.end()) << title;
        return panel().chips.at(static_cast<std::size_t>(found - titles.begin() - 1)).frame;
    }
    testing::AssertionResult stand(const Names& titles)
    {
        return eventually([&] {
            const auto now = chips();
            return testing::AssertionResult(now == titles) << testing::PrintToString(now);
        });
    }
    /// Drops on the right part of another, so that it comes behind that one.
    void dragBehind(const Frame& what, const Frame& other)
    {
        pointer.drag(what, other.x + other.width * 3 / 4, other.y + other.height / 2);
    }

    Client client{server};
    Keyboard keyboard{server.display()};
    Bar bar{server};
};

// Fault: the second of two quick clicks asks for what the first has asked for.
TEST_P(Gestures, countEachClick)
{
    for (int i = 0; i < 3; ++i)
        pointer.click(panel().showDesktop);
    EXPECT_TRUE(eventually([&] { return desktop.isShown(); }));
}

// Faults: a drag that clicks as well, goes on after Escape, drops a place off or is forgotten with
// the next window; another window that goes to the space,
// or none; a desktop that is not shown or not left again, with windows that pass for minimised.
TEST_P(Gestures, moveChipsAndWindowsAndShowTheDesktop)
{
    const auto active = desktop.activeWindow();
    dragBehind(chip("a"), chip("c"));
    pointer.moveTo(5, 5);
    EXPECT_TRUE(stand({"", "b", "c", "a", "d"}));
    EXPECT_EQ(desktop.activeWindow(), active);
    EXPECT_FALSE(desktop.isHidden(active));
    client.open({.title = "e"});
    EXPECT_TRUE(stand({"", "b", "c", "a", "d", "e"}));

    // Escape puts it back, and does not reach the window below.
    pointer.moveTo(chip("b"));
    pointer.press(Button::primary);
    pointer.moveTo(chip("a"));
    pointer.moveTo(chip("d"));
    ASSERT_TRUE(eventually([&] { return keyboard.isGrabbed(); })) << "no drag";
    keyboard.type(XKB_KEY_Escape);
    pointer.release(Button::primary);
    EXPECT_TRUE(staysTrue(300ms, [&] { return chips() == Names{"", "b", "c", "a", "d", "e"}; }))
        << testing::PrintToString(chips());
    pointer.moveTo(5, 5);

    const auto cells = panel().cells;
    ASSERT_GT(cells.size(), 1u);
    const auto moved = client.windows()[2];
    const auto& cell = cells[1].frame;
    pointer.drag(chip("c"), cell.x + cell.width / 2, cell.y + cell.height / 2);
    pointer.moveTo(5, 5);
    EXPECT_TRUE(eventually([&] { return desktop.desktopOf(moved) == 1u; }));
    EXPECT_TRUE(stand({"", "b", "a", "d", "e"})) << "after Escape too";
    EXPECT_TRUE(settles(bar));
    EXPECT_EQ(desktop.currentDesktop(), 0u);

    for (const bool shows : {true, false}) {
        pointer.click(panel().showDesktop);
        EXPECT_TRUE(eventually([&] { return desktop.isShown() == shows; })) << shows;
        for (const auto& window : bar.state().windows)
            EXPECT_FALSE(window.isMinimized) << window.title;
    }
    pointer.moveTo(5, 5);
    EXPECT_TRUE(settles(bar));
}

QUORVEL_UNDER_EACH_MANAGER(Gestures);

}
