#include <algorithm>
#include <filesystem>

#include <xkbcommon/xkbcommon-keysyms.h>

#include "Tests/X11/Support/DesktopFixture.h"
#include "Tests/X11/Support/Keyboard.h"

namespace quorvel::x11tests {

class Menus : public UnderEachManager {
protected:
    /// The windows belong to an application that writes down how it is started.
    Menus()
    {
        const auto program
            = server.addProgram("sample", "echo \"started $*\" >> '" + starts.string() + "'");
        server.addApplication("sample", "Sample",
            "StartupWMClass=Sample\nExec=" + program
                + "\nActions=write;\n[Desktop Action write]\nName=Write\nExec=" + program
                + " --write");
        bar = std::make_unique<Bar>(server);
    }
    void SetUp() override
    {
        ASSERT_TRUE(bar->appears());
        open("first");
        open("second");
    }

    void open(const std::string& title, bool isFixed = false)
    {
        clients.push_back(
            std::make_unique<ClientProcess>(server, [title, isFixed](Client& client, char) {
                client.open({.title = title, .isFixed = isFixed, .answersClose = true});
            }));
        clients.back()->order('o');
        ASSERT_TRUE(eventually([&] { return desktop.clientTitled(title).has_value(); }));
        windows.push_back(*desktop.clientTitled(title));
        ASSERT_TRUE(eventually(desktop.activation(windows.back())));
        ASSERT_TRUE(settles(*bar));
    }
    bool isThere(xcb_window_t window)
    {
        const auto all = desktop.clients();
        return std::find(all.begin(), all.end(), window) != all.end();
    }

    /// The titles of what can be chosen.
    std::vector<std::string> entries() const
    {
        std::vector<std::string> titles;
        for (const auto& entry : bar->state().menu) {
            if (entry.isEnabled)
                titles.push_back(entry.title);
        }
        return titles;
    }
    testing::AssertionResult isClosed()
    {
        return eventually([&] { return bar->state().menu.empty(); });
    }
    void openMenuOf(xcb_window_t window) { openMenuAt(bar->state().chipFrame(window)); }
    Frame entry(const std::string& title)
    {
        const auto state = bar->state();
        const auto* const found = state.entryTitled(title);
        EXPECT_TRUE(found) << title << " is not among " << testing::PrintToString(entries());
        return found ? found->frame : Frame{};
    }
    void choose(const std::string& title) { pointer.click(entry(title)); }
    void focus()
    {
        const auto result = run({"--focus"});
        EXPECT_EQ(result.status, 0) << result.error;
    }
    void openMenuAt(const Frame& frame)
    {
        pointer.click(frame, Button::secondary);
        ASSERT_TRUE(eventually([&] { return !entries().empty(); }));
    }
    /// Between the last chip and the switcher.
    void openBarMenu()
    {
        const auto panel = bar->state().panel();
        openMenuAt({panel.frame.width / 2, panel.frame.y, 2, panel.frame.height});
    }
    /// Whether the keyboard is on what is called so; nowhere: empty.
    testing::AssertionResult isOn(const std::string& name)
    {
        return eventually([&] {
            const auto now = bar->state().panel().keyFocus.value_or("");
            const bool isThere = name.empty() ? now.empty() : now.find(name) != std::string::npos;
            return testing::AssertionResult(isThere) << "it is on " << now;
        });
    }

    const std::filesystem::path starts = server.folder() / "starts";
    Keyboard keyboard{server.display()};
    std::vector<std::unique_ptr<ClientProcess>> clients;
    std::vector<xcb_window_t> windows;
    std::unique_ptr<Bar> bar;
};

// Faults: a walk along the bar that begins elsewhere than at the window in use, that takes its
// focus, or that goes on after a menu or a click has the keyboard; a menu that a click outside or
// Escape does not close, that takes the focus, or whose keys reach the window below; one entry too
// few or too many on the way; letters that do not reach it.
TEST_P(Menus, andTheBarAreWalkedByKeyboardAndLeftAgain)
{
    focus();
    EXPECT_TRUE(isOn("second"));
    EXPECT_EQ(desktop.activeWindow(), windows[1]);
    keyboard.type(XKB_KEY_Left);
    EXPECT_TRUE(isOn("first"));
    keyboard.type(XKB_KEY_Return);
    EXPECT_TRUE(becomesActive(windows[0]));
    EXPECT_TRUE(isOn(""));
    ASSERT_TRUE(settles(*bar));

    focus();
    EXPECT_TRUE(isOn("first"));
    keyboard.type(XKB_KEY_Menu);
    ASSERT_TRUE(eventually([&] { return !entries().empty(); }));
    EXPECT_TRUE(isOn(""));
    keyboard.type(XKB_KEY_Escape);
    EXPECT_TRUE(isClosed());
    EXPECT_TRUE(isOn("first"));
    pointer.click(desktop.frame(windows[0]));
    EXPECT_TRUE(isOn(""));
    focus();
    keyboard.type(XKB_KEY_Escape);
    EXPECT_TRUE(isOn(""));
    EXPECT_EQ(desktop.activeWindow(), windows[0]);
    clickChip(*bar, windows[1]);
    EXPECT_TRUE(becomesActive(windows[1]));
    ASSERT_TRUE(settles(*bar));

    openMenuOf(windows[0]);
    EXPECT_EQ(desktop.activeWindow(), windows[1]);
    pointer.click({600, 300, 10, 10});
    EXPECT_TRUE(isClosed());
    EXPECT_EQ(desktop.activeWindow(), windows[1]);

    openMenuOf(windows[0]);
    keyboard.type(XKB_KEY_m);
    keyboard.type(XKB_KEY_i);
    keyboard.type(XKB_KEY_Return);
    EXPECT_TRUE(isClosed());
    EXPECT_TRUE(eventually([&] { return desktop.isHidden(windows[0]); }));
    EXPECT_FALSE(desktop.isHidden(windows[1]));
    pointer.moveTo(5, 5);
    EXPECT_TRUE(settles(*bar));
}

// Faults: an entry that does another's work, or does it to another window, by a drag or by clicks;
// one that outlives its window; an application that is started twice.
TEST_P(Menus, doWhatTheirEntriesSay)
{
    pointer.moveTo(bar->state().chipFrame(windows[0]));
    pointer.press(Button::secondary);
    ASSERT_TRUE(eventually([&] { return !entries().empty(); }));
    pointer.moveTo(entry("Minimise"));
    pointer.release(Button::secondary);
    EXPECT_TRUE(eventually([&] { return desktop.isHidden(windows[0]); }));
    ASSERT_TRUE(settles(*bar));
    openMenuOf(windows[0]);
    choose("Write");
    EXPECT_TRUE(eventually([&] { return readFile(starts) == "started --write\n"; }));
    openMenuOf(windows[0]);
    choose("New Window");
    EXPECT_TRUE(eventually([&] { return readFile(starts) == "started --write\nstarted \n"; }));

    open("third");
    openMenuOf(windows[2]);
    clients[2]->kill();
    ASSERT_TRUE(eventually([&] { return bar->state().windowOf(windows[2]) == nullptr; }));
    choose("Close");
    EXPECT_TRUE(isClosed());
    EXPECT_TRUE(isThere(windows[0]) && isThere(windows[1]));

    openMenuOf(windows[1]);
    choose("Quit");
    EXPECT_TRUE(eventually([&] { return !isThere(windows[1]); }));
    ASSERT_TRUE(settles(*bar));

    openBarMenu();
    choose("Quit Quorvel");
    EXPECT_EQ(bar->process().waitForEnd(), 0);
}

// Faults: a request that the manager does not understand; a state that is asked for again instead
// of being taken back; one that the window does not allow is offered all the same.
TEST_P(Menus, switchTheStatesOfAWindow)
{
    const auto window = windows[0];
    const auto isMaximised = [&] {
        return desktop.hasState(window, "_NET_WM_STATE_MAXIMIZED_VERT")
            && desktop.hasState(window, "_NET_WM_STATE_MAXIMIZED_HORZ");
    };
    for (const bool isOn : {true, false}) {
        openMenuOf(window);
        choose("Maximise");
        EXPECT_TRUE(eventually([&] { return isMaximised() == isOn; }));
        ASSERT_TRUE(settles(*bar));
        openMenuOf(window);
        choose("Keep Above Others");
        EXPECT_TRUE(
            eventually([&] { return desktop.hasState(window, "_NET_WM_STATE_ABOVE") == isOn; }));
        ASSERT_TRUE(settles(*bar));
        openMenuOf(window);
        pointer.moveTo(entry("Move to Desktop"));
        const std::string wanted = isOn ? "On All Desktops" : "Only on This Desktop";
        ASSERT_TRUE(eventually([&] { return bar->state().entryTitled(wanted) != nullptr; }));
        choose(wanted);
        EXPECT_TRUE(eventually([&] {
            return desktop.desktopOf(window) == (isOn ? kAllDesktops : desktop.currentDesktop());
        }));
        ASSERT_TRUE(settles(*bar));
    }
    openMenuOf(window);
    choose("Full Screen");
    EXPECT_TRUE(eventually([&] { return desktop.hasState(window, "_NET_WM_STATE_FULLSCREEN"); }));
    desktop.setState(window, "FULLSCREEN", false);
    EXPECT_TRUE(eventually([&] { return bar->state().panel().isVisible; }));
    ASSERT_TRUE(settles(*bar));

    open("fixed", true);
    openMenuOf(windows[2]);
    EXPECT_THAT(entries(), testing::Not(testing::Contains("Maximise")));
    EXPECT_THAT(entries(), testing::Contains("Close"));
}

QUORVEL_UNDER_EACH_MANAGER(Menus);

}
