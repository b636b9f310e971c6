#include <gmock/gmock.h>
#include <xkbcommon/xkbcommon-keysyms.h>

#include "Tests/X11/Support/DesktopFixture.h"
#include "Tests/X11/Support/Keyboard.h"

namespace quorvel::x11tests {

class WindowFinders : public UnderEachManager {
protected:
    WindowFinders()
    {
        for (const auto& [title, name] : {std::pair{"Letter to Ann", "Writer"},
                 {"Letter to Bob", "Writer"}, {"Ann's picture", "Painter"}})
            windows.push_back(
                client.open({.title = title, .applicationClass = name, .answersClose = true}));
    }
    void SetUp() override
    {
        ASSERT_TRUE(bar.appears());
        ASSERT_TRUE(eventually([&] { return desktop.taskbarClients().size() == 3; }));
        desktop.moveToDesktop(letterToAnn(), 1);
        ASSERT_TRUE(eventually([&] { return desktop.desktopOf(letterToAnn()) == 1U; }));
        desktop.activate(letterToBob());
        ASSERT_TRUE(becomesActive(letterToBob()));
        ASSERT_TRUE(settles(bar));
    }
    xcb_window_t letterToAnn() const { return windows[0]; }
    xcb_window_t letterToBob() const { return windows[1]; }

    void open()
    {
        const auto result = run({"--find"});
        EXPECT_EQ(result.status, 0) << result.error;
        ASSERT_TRUE(eventually([&] { return bar.state().finder.has_value(); }));
    }
    /// The titles of the rows in sight: * selected.
    testing::AssertionResult shows(const std::string& wanted)
    {
        return eventually([&] {
            const auto state = bar.state();
            std::string text = state.finder ? "" : "closed";
            for (const auto& row : state.finder.value_or(State::Finder{}).rows) {
                const auto window
                    = std::ranges::find(state.windows, row.window, &State::Window::id);
                text += (text.empty() ? "" : "|") + std::string{row.isSelected ? "*" : ""}
                    + (window == state.windows.end() ? "?" : window->title);
            }
            return testing::AssertionResult(text == wanted) << text;
        });
    }
    void type(const std::string& letters)
    {
        for (const char letter : letters)
            keyboard.type(static_cast<std::uint32_t>(letter));
    }
    void tap(std::uint32_t symbol) { keyboard.type(symbol); }

    Keyboard keyboard{server.display()};
    Client client{server};
    std::vector<xcb_window_t> windows;
    Bar bar{server};
};

// Faults: it takes the focus from the window in use; words count in their order only; Return leads
// to a window's application but not to its desktop, or pulls the window here; Control-Delete erases
// text, closes the panel, or the window in front.
TEST_P(WindowFinders, leadToWindowsOfOtherDesktopsAndCloseOthers)
{
    open();
    EXPECT_EQ(desktop.activeWindow(), letterToBob());
    type("wri ann");
    EXPECT_TRUE(shows("*Letter to Ann"));
    tap(XKB_KEY_Escape);
    type("ann wri");
    EXPECT_TRUE(shows("*Letter to Ann"));
    tap(XKB_KEY_Return);
    EXPECT_TRUE(shows("closed"));
    EXPECT_TRUE(becomesActive(letterToAnn()));
    EXPECT_EQ(desktop.currentDesktop(), 1U);
    EXPECT_EQ(desktop.desktopOf(letterToAnn()), 1U);
    ASSERT_TRUE(settles(bar));

    open();
    EXPECT_TRUE(shows("Letter to Ann|*Letter to Bob|Ann's picture"));
    type("pic");
    EXPECT_TRUE(shows("*Ann's picture"));
    keyboard.typeChord(XKB_KEY_Control_L, XKB_KEY_Delete);
    EXPECT_TRUE(eventually([&] {
        client.answerCloseRequests();
        return desktop.taskbarClients().size() == 2;
    }));
    tap(XKB_KEY_Escape);
    EXPECT_TRUE(shows("Letter to Ann|*Letter to Bob"));
    EXPECT_EQ(desktop.activeWindow(), letterToAnn());
    run({"--find"});
    EXPECT_TRUE(shows("closed"));
}

// Faults: the window comes without the focus, since the bar has not heard yet where it is; the user
// is taken to where it has been.
TEST_P(WindowFinders, bringWindowsHere)
{
    open();
    type("ann wri");
    EXPECT_TRUE(shows("*Letter to Ann"));
    keyboard.typeChord(XKB_KEY_Shift_L, XKB_KEY_Return);
    EXPECT_TRUE(shows("closed"));
    EXPECT_TRUE(becomesActive(letterToAnn()));
    EXPECT_EQ(desktop.currentDesktop(), 0U);
    EXPECT_EQ(desktop.desktopOf(letterToAnn()), 0U);
    EXPECT_TRUE(settles(bar));
}

QUORVEL_UNDER_EACH_MANAGER(WindowFinders);

}
