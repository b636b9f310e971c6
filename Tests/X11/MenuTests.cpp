#include <algorithm>
#include <filesystem>
#include <fstream>

#include <xkbcommon/xkbcommon-keysyms.h>

#include "Tests/X11/Support/DesktopFixture.h"
#include "Tests/X11/Support/Keyboard.h"

namespace quorvel::x11tests {

class Menus : public UnderEachManager {
protected:
    /// The windows belong to an application that writes down how it is started.
    Menus()
    {
        const auto folder = server.folder() / "data" / "applications";
        std::filesystem::create_directories(folder);
        const auto script = server.folder() / "sample";
        std::ofstream(script) << "#!/bin/sh\necho \"started $*\" >> '" << starts.string() << "'\n";
        std::filesystem::permissions(script, std::filesystem::perms::owner_all);
        std::ofstream(folder / "sample.desktop")
            << "[Desktop Entry]\nType=Application\nName=Sample\nStartupWMClass=Sample\nExec="
            << script.string()
            << "\nActions=write;\n[Desktop Action write]\nName=Write\nExec=" << script.string()
            << " --write\n";
        std::ofstream(folder / "org.gnome.SystemMonitor.desktop")
            << "[Desktop Entry]\nType=Application\nName=Monitor\nExec=" << script.string()
            << " --monitor\n";
        bar = std::make_unique<Bar>(server);
    }
    void SetUp() override
    {
        ASSERT_TRUE(bar->appears());
        open("first");
        open("second");
    }

    void open(const std::string& title)
    {
        const auto count = windows.size();
        clients.push_back(std::make_unique<ClientProcess>(server, [title](Client& client, char) {
            client.open({.title = title, .answersClose = true});
        }));
        clients.back()->order('o');
        ASSERT_TRUE(eventually(5s, [&] { return desktop.clientTitled(title).has_value(); }));
        windows.push_back(*desktop.clientTitled(title));
        desktop.activate(windows.back());
        ASSERT_TRUE(eventually(2s, [&] { return desktop.activeWindow() == windows[count]; }));
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
        const auto state = bar->state();
        for (const auto& entry : state ? state->menu : std::vector<State::MenuEntry>{}) {
            if (entry.isEnabled)
                titles.push_back(entry.title);
        }
        return titles;
    }
    testing::AssertionResult isClosed()
    {
        return eventually(2s, [&] { return bar->state()->menu.empty(); });
    }
    void openMenuOf(xcb_window_t window)
    {
        const auto state = bar->state();
        ASSERT_TRUE(state && state->chipOf(window));
        openMenuAt(state->chipOf(window)->frame);
    }
    void point(const std::string& title)
    {
        const auto state = bar->state();
        const auto* const entry = state ? state->entryTitled(title) : nullptr;
        ASSERT_TRUE(entry) << title << " is not among " << testing::PrintToString(entries());
        pointer.moveTo(entry->frame);
    }
    void choose(const std::string& title)
    {
        const auto state = bar->state();
        const auto* const entry = state ? state->entryTitled(title) : nullptr;
        ASSERT_TRUE(entry) << title << " is not among " << testing::PrintToString(entries());
        pointer.click(entry->frame);
    }
    /// Opens the submenu of an entry by resting on it.
    void openSubmenu(const std::string& title)
    {
        const auto count = entries().size();
        ASSERT_NO_FATAL_FAILURE(point(title));
        ASSERT_TRUE(eventually(2s, [&] { return entries().size() > count; }));
    }
    /// With the arrow keys, from the first.
    void walkTo(const std::string& title)
    {
        const auto titles = entries();
        const auto place = std::find(titles.begin(), titles.end(), title);
        ASSERT_NE(place, titles.end()) << title;
        for (auto i = titles.begin(); i <= place; ++i)
            keyboard.type(XKB_KEY_Down);
    }

    std::string ask(const std::vector<std::string>& arguments)
    {
        const auto result = runProgram(server.environment(), server.folder(), arguments);
        EXPECT_EQ(result.status, 0) << result.error;
        return result.output;
    }
    void focus() { ask({"--focus"}); }
    void openMenuAt(const Frame& frame)
    {
        pointer.click(frame, Button::secondary);
        ASSERT_TRUE(eventually(2s, [&] { return !entries().empty(); }));
    }
    /// Between the last chip and the switcher.
    void openBarMenu()
    {
        const auto panel = *bar->state()->visiblePanel();
        openMenuAt({panel.frame.width / 2, panel.frame.y, 2, panel.frame.height});
    }
    /// Whether the keyboard is on what is called so; nowhere: empty.
    testing::AssertionResult isOn(const std::string& name)
    {
        return eventually(2s, [&] {
            const auto now = bar->state()->visiblePanel()->keyFocus.value_or("");
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
// few or too many on the way; a submenu that opens no way back.
TEST_P(Menus, andTheBarAreWalkedByKeyboardAndLeftAgain)
{
    focus();
    EXPECT_TRUE(isOn("second"));
    EXPECT_EQ(desktop.activeWindow(), windows[1]);
    keyboard.type(XKB_KEY_Left);
    EXPECT_TRUE(isOn("first"));
    keyboard.type(XKB_KEY_Return);
    EXPECT_TRUE(eventually(2s, [&] { return desktop.activeWindow() == windows[0]; }));
    EXPECT_TRUE(isOn(""));
    ASSERT_TRUE(settles(*bar));

    focus();
    EXPECT_TRUE(isOn("first"));
    keyboard.type(XKB_KEY_Menu);
    ASSERT_TRUE(eventually(2s, [&] { return !entries().empty(); }));
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
    EXPECT_TRUE(eventually(2s, [&] { return desktop.activeWindow() == windows[1]; }));
    ASSERT_TRUE(settles(*bar));

    openMenuOf(windows[0]);
    EXPECT_EQ(desktop.activeWindow(), windows[1]);
    pointer.click({600, 300, 10, 10});
    EXPECT_TRUE(isClosed());
    EXPECT_EQ(desktop.activeWindow(), windows[1]);

    openMenuOf(windows[0]);
    const auto titles = entries();
    keyboard.type(XKB_KEY_Up);
    keyboard.type(XKB_KEY_Escape);
    EXPECT_TRUE(isClosed());
    EXPECT_TRUE(isThere(windows[0])) << "the last entry is Quit";

    openMenuOf(windows[0]);
    walkTo("Minimise");
    keyboard.type(XKB_KEY_Return);
    EXPECT_TRUE(isClosed());
    EXPECT_TRUE(eventually(2s, [&] { return desktop.isHidden(windows[0]); }));
    EXPECT_FALSE(desktop.isHidden(windows[1]));
    EXPECT_TRUE(settles(*bar));

    openMenuOf(windows[1]);
    walkTo("Move to Desktop");
    keyboard.type(XKB_KEY_Right);
    ASSERT_TRUE(eventually(2s, [&] { return entries().size() > titles.size(); }));
    keyboard.type(XKB_KEY_Left);
    ASSERT_TRUE(eventually(2s, [&] { return entries() == titles; }));
    keyboard.type(XKB_KEY_Right);
    ASSERT_TRUE(eventually(2s, [&] { return entries().size() > titles.size(); }));
    keyboard.type(XKB_KEY_Down); // from the second space, as the window is on the first
    keyboard.type(XKB_KEY_Return);
    EXPECT_TRUE(eventually(2s, [&] { return desktop.desktopOf(windows[1]) == 2u; }));
    pointer.moveTo(5, 5);
    EXPECT_TRUE(settles(*bar));
}

// Faults: an entry that does another's work, or does it to another window; one that outlives its
// window; an application that is started twice, or whose windows are not all asked to close.
TEST_P(Menus, doWhatTheirEntriesSay)
{
    openMenuOf(windows[0]);
    choose("Minimise");
    EXPECT_TRUE(eventually(2s, [&] { return desktop.isHidden(windows[0]); }));
    ASSERT_TRUE(settles(*bar));
    openMenuOf(windows[0]);
    choose("Restore");
    EXPECT_TRUE(eventually(2s, [&] { return desktop.activeWindow() == windows[0]; }));
    EXPECT_FALSE(desktop.isHidden(windows[0]));
    ASSERT_TRUE(settles(*bar));

    openMenuOf(windows[0]);
    choose("Write");
    EXPECT_TRUE(eventually(2s, [&] { return readFile(starts) == "started --write\n"; }));
    openMenuOf(windows[0]);
    choose("New Window");
    EXPECT_TRUE(eventually(2s, [&] { return readFile(starts) == "started --write\nstarted \n"; }));

    // The pin is not seen while the application has windows.
    for (const auto* entry : {"Pin to Bar", "Unpin from Bar", "Pin to Bar"}) {
        openMenuOf(windows[0]);
        choose(entry);
        ASSERT_TRUE(isClosed());
    }

    openMenuOf(windows[1]);
    openSubmenu("Move to Desktop");
    const auto space = entries().back();
    choose(space);
    EXPECT_TRUE(eventually(2s, [&] { return desktop.desktopOf(windows[1]).value_or(0) > 0; }));
    desktop.moveToDesktop(windows[1], 0);
    ASSERT_TRUE(settles(*bar));

    open("third");
    openMenuOf(windows[2]);
    clients[2]->kill();
    ASSERT_TRUE(eventually(2s, [&] { return bar->state()->windowOf(windows[2]) == nullptr; }));
    choose("Close");
    EXPECT_TRUE(isClosed());
    EXPECT_TRUE(isThere(windows[0]) && isThere(windows[1]));

    openMenuOf(windows[0]);
    choose("Close");
    EXPECT_TRUE(eventually(2s, [&] { return !isThere(windows[0]); }));
    EXPECT_TRUE(isThere(windows[1]));
    ASSERT_TRUE(settles(*bar));
    openMenuOf(windows[1]);
    choose("Quit");
    EXPECT_TRUE(eventually(2s, [&] { return !isThere(windows[1]); }));
    ASSERT_TRUE(settles(*bar));

    pointer.moveTo(5, 5);
    EXPECT_TRUE(eventually(2s, [&] { return bar->state()->visiblePanel()->pins.size() == 1; }));

    openBarMenu();
    choose("Quit Quorvel");
    EXPECT_EQ(bar->process().waitForEnd(5s), 0);
}

// Faults: an entry that reaches one window of a group instead of all; a pin that opens nothing, or
// is offered for what cannot be started again; a setting that waits for the next start; a list of
// spaces that leads elsewhere.
TEST_P(Menus, ofGroupsPinsAndTheBarDoWhatTheySay)
{
    ask({"--set", "groupWindowsByApp=true"});
    ASSERT_TRUE(eventually(2s, [&] { return bar->state()->visiblePanel()->chips.size() == 1; }));
    openMenuOf(windows[0]);
    choose("first");
    EXPECT_TRUE(eventually(2s, [&] { return desktop.activeWindow() == windows[0]; }));
    openMenuOf(windows[0]);
    choose("Pin to Bar");
    ASSERT_TRUE(isClosed());
    openMenuOf(windows[0]);
    choose("Minimise All");
    EXPECT_TRUE(eventually(
        2s, [&] { return desktop.isHidden(windows[0]) && desktop.isHidden(windows[1]); }));
    openMenuOf(windows[0]);
    openSubmenu("Move to Desktop");
    choose(entries().back());
    EXPECT_TRUE(eventually(2s, [&] {
        const auto desktops
            = std::vector{desktop.desktopOf(windows[0]), desktop.desktopOf(windows[1])};
        return desktops[0].value_or(0) > 0 && desktops[0] == desktops[1];
    }));
    const auto space = desktop.desktopOf(windows[0]).value_or(0);

    const auto openPin = [this] {
        pointer.moveTo(5, 5);
        ASSERT_TRUE(eventually(2s, [&] { return bar->state()->visiblePanel()->pins.size() == 1; }));
        openMenuAt(bar->state()->visiblePanel()->pins.front().frame);
        choose("Open");
    };
    const auto goToFirst = [this] {
        pointer.click(bar->state()->visiblePanel()->cells.front().frame);
        EXPECT_TRUE(eventually(2s, [&] { return desktop.currentDesktop() == 0u; }));
    };
    openPin();
    EXPECT_TRUE(eventually(2s, [&] { return desktop.currentDesktop() == space; }))
        << "it runs there";
    ASSERT_TRUE(eventually(2s, [&] { return bar->state()->chipOf(windows[0]) != nullptr; }));
    goToFirst();

    pointer.click(bar->state()->visiblePanel()->spaceList);
    ASSERT_TRUE(eventually(2s, [&] { return entries().size() > space; }));
    EXPECT_NE(entries()[space].find("2 windows"), std::string::npos) << entries()[space];
    choose(entries()[space]);
    ASSERT_TRUE(eventually(2s, [&] { return desktop.currentDesktop() == space; }));
    ASSERT_TRUE(eventually(2s, [&] { return bar->state()->chipOf(windows[0]) != nullptr; }));
    openMenuOf(windows[0]);
    choose("Close All");
    EXPECT_TRUE(eventually(2s, [&] { return !isThere(windows[0]) && !isThere(windows[1]); }));
    goToFirst();
    openPin();
    EXPECT_TRUE(eventually(2s, [&] { return readFile(starts) == "started \n"; }));

    openBarMenu();
    choose("Monitor");
    EXPECT_TRUE(eventually(
        2s, [&] { return readFile(starts).find("started --monitor") != std::string::npos; }));
    const auto height = bar->state()->visiblePanel()->frame.height;
    openBarMenu();
    openSubmenu("Settings");
    openSubmenu("Size");
    choose("Largest");
    EXPECT_TRUE(eventually(2s, [&] {
        const auto state = bar->state();
        return state->visiblePanel() && state->visiblePanel()->frame.height > height;
    }));
    EXPECT_EQ(ask({"--get", "barSize"}), "\"xxl\"\n");

    Client other{server};
    const auto bare = other.open({.title = "bare", .applicationClass = "NoDesktopFile"});
    ASSERT_TRUE(eventually(5s, [&] { return bar->state()->chipOf(bare) != nullptr; }));
    openMenuOf(bare);
    EXPECT_EQ(bar->state()->entryTitled("Pin to Bar"), nullptr);
}

QUORVEL_UNDER_EACH_MANAGER(Menus);

}
