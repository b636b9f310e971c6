#include <filesystem>

#include <xkbcommon/xkbcommon-keysyms.h>

#include "Tests/X11/Support/DesktopFixture.h"
#include "Tests/X11/Support/Keyboard.h"
#include "Tests/X11/Support/ScreenReader.h"
#include "Tests/X11/Support/SelectionPeer.h"

namespace quorvel::x11tests {

class AppLaunchers : public UnderEachManager {
protected:
    /// Programs that write down that they were started.
    AppLaunchers()
    {
        const auto program
            = server.addProgram("program", "echo \"$1\" >> '" + starts.string() + "'");
        for (const std::string name : {"Zebra", "Zinc", "Zoo"})
            server.addApplication(name, name + " Sample", "Exec=" + program + ' ' + name);
    }
    void SetUp() override
    {
        bar = std::make_unique<Bar>(server);
        ASSERT_TRUE(bar->appears());
        client.order('o');
        ASSERT_TRUE(eventually([&] { return desktop.clientTitled("typed").has_value(); }));
        window = *desktop.clientTitled("typed");
        ASSERT_TRUE(eventually(desktop.activation(window)));
        ASSERT_TRUE(settles(*bar));
    }
    void ask()
    {
        const auto result = runProgram(server.environment(), server.folder(), {"--launcher"});
        EXPECT_EQ(result.status, 0) << result.error;
    }
    testing::AssertionResult isOpen(bool isWanted = true)
    {
        return eventually([&] { return bar->state().launcher.has_value() == isWanted; });
    }
    void open()
    {
        ask();
        ASSERT_TRUE(isOpen());
        ASSERT_TRUE(eventually([&] { return !rows().empty(); }));
    }
    /// The rows in sight: * selected, pins in brackets.
    std::string rows()
    {
        std::string text;
        const auto state = bar->state();
        for (const auto& row :
            state.launcher ? state.launcher->rows : decltype(State::Launcher::rows){}) {
            const auto name = row.section == "pinned" ? "[" + row.id + "]" : row.id;
            text += (text.empty() ? "" : " ") + std::string{row.isSelected ? "*" : ""} + name;
        }
        return text;
    }
    testing::AssertionResult shows(const std::string& wanted)
    {
        return eventually([&] {
            const auto now = rows();
            return testing::AssertionResult(now == wanted) << now;
        });
    }
    testing::AssertionResult asksFor(const std::string& query)
    {
        return eventually([&] {
            const auto launcher = bar->state().launcher;
            return testing::AssertionResult(launcher && launcher->query == query)
                << (launcher ? launcher->query : "closed");
        });
    }
    void type(std::initializer_list<std::uint32_t> symbols)
    {
        for (const auto symbol : symbols)
            keyboard.type(symbol);
    }

    const std::filesystem::path starts = server.folder() / "starts";
    Keyboard keyboard{server.display()};
    ClientProcess client{server,
        [](Client& window_, char) { window_.open({.title = "typed", .answersClose = true}); }};
    xcb_window_t window{};
    std::unique_ptr<Bar> bar;
};

// Faults: it opens without the keyboard, or takes the focus from the window in use; letters that
// get lost; the wrong program; it stays open, or opens again for the click that closes it.
TEST_P(AppLaunchers, openAndCloseOverAWindowThatKeepsTheFocus)
{
    open();
    EXPECT_EQ(desktop.activeWindow(), window);
    type({XKB_KEY_z, XKB_KEY_i});
    EXPECT_TRUE(shows("*Zinc"));
    type({XKB_KEY_Return});
    EXPECT_TRUE(eventually([&] { return readFile(starts) == "Zinc\n"; }));
    EXPECT_TRUE(isOpen(false));
    EXPECT_EQ(desktop.activeWindow(), window);

    open();
    type({XKB_KEY_z, XKB_KEY_Down, XKB_KEY_Down, XKB_KEY_Down});
    EXPECT_TRUE(shows("Zoo Zinc *Zebra"));
    type({XKB_KEY_Escape});
    EXPECT_TRUE(asksFor(""));
    type({XKB_KEY_Escape});
    EXPECT_TRUE(isOpen(false));

    for (const auto& outside : {Frame{700, 300, 10, 10}, desktop.frame(window)}) {
        open();
        pointer.click(outside);
        EXPECT_TRUE(isOpen(false));
    }
    open();
    ask();
    EXPECT_TRUE(isOpen(false));

    const auto panel = bar->state().panel();
    const Frame button{panel.frame.x + 10, panel.frame.y + 10, 4, 4};
    pointer.click(button);
    EXPECT_TRUE(isOpen());
    pointer.click(button);
    EXPECT_TRUE(isOpen(false));
    EXPECT_TRUE(settles(*bar));
    EXPECT_TRUE(isOpen(false));
    pointer.click(button);
    EXPECT_TRUE(isOpen());
    EXPECT_EQ(readFile(starts), "Zinc\n");
}

QUORVEL_UNDER_EACH_MANAGER(AppLaunchers);

/// One of the programs opens a window.
class AppLauncherFocus : public AppLaunchers {
protected:
    AppLauncherFocus()
    {
        server.addApplication("quiz", "Quiz", "Exec=xterm -T Launched -geometry 40x10+500+450");
    }
};

// Faults: a focus that is not where it was before; a window that stays behind the one in use.
TEST_P(AppLauncherFocus, returnsUnlessAProgramIsStarted)
{
    open();
    EXPECT_EQ(desktop.activeWindow(), window);
    type({XKB_KEY_Escape});
    EXPECT_TRUE(isOpen(false));
    ASSERT_TRUE(settles(*bar));
    EXPECT_EQ(desktop.activeWindow(), window);

    open();
    pointer.click(bar->state().launcher->field); // which is no reason to close
    type({XKB_KEY_z});
    EXPECT_TRUE(asksFor("z"));
    pointer.click(desktop.frame(window));
    EXPECT_TRUE(isOpen(false));
    ASSERT_TRUE(settles(*bar));
    EXPECT_EQ(desktop.activeWindow(), window);

    open();
    type({XKB_KEY_q, XKB_KEY_u, XKB_KEY_i});
    EXPECT_TRUE(shows("*quiz"));
    type({XKB_KEY_Return});
    EXPECT_TRUE(isOpen(false));
    ASSERT_TRUE(eventually([&] { return desktop.clientTitled("Launched").has_value(); }));
    EXPECT_TRUE(becomesActive(*desktop.clientTitled("Launched")));
}

INSTANTIATE_TEST_SUITE_P(, AppLauncherFocus,
    testing::Values(
        ManagerKind::openbox, ManagerKind::xfwm4, ManagerKind::metacity, ManagerKind::icewm),
    managerName);

/// What no manager has a part in.
class LauncherFields : public AppLaunchers { };

// Faults: a text of another program that does not arrive, or with no end; one that is cut and
// cannot be pasted elsewhere.
TEST_P(LauncherFields, pasteAndCopy)
{
    constexpr std::uint8_t control = 37, a = 38, x = 53, v = 55;
    SelectionPeer peer{server.display()};
    const auto served = [&](auto condition) {
        return eventually([&] {
            peer.serve();
            return condition();
        });
    };
    open();
    peer.own("CLIPBOARD", {{"UTF8_STRING", std::string(300'000, 'q')}});
    keyboard.chord(control, v);
    EXPECT_TRUE(served([&] { return bar->state().launcher->query.size() > 900; }));
    peer.own("CLIPBOARD", {{"UTF8_STRING", "zebra"}});
    keyboard.chord(control, a);
    keyboard.chord(control, v);
    EXPECT_TRUE(served([&] { return bar->state().launcher->query == "zebra"; }));
    keyboard.chord(control, a);
    keyboard.chord(control, x);
    EXPECT_TRUE(asksFor(""));
    peer.request("CLIPBOARD", "UTF8_STRING");
    EXPECT_TRUE(served([&] { return peer.hasAnswer(); }));
    EXPECT_EQ(peer.answer(), "zebra");
}

class AccessibleLauncher : public AppLaunchers { };

// Faults: a launcher that opens, a letter that is typed or a row that is chosen, and nobody hears
// of it; a text that a reader cannot read or change.
TEST_P(AccessibleLauncher, isReadWhileTheUserTypes)
{
    ScreenReader reader{server};
    ASSERT_TRUE(eventually([&] { return !reader.elementsOf("quorvel").empty(); }));
    const auto hears = [&](const std::string& event, const std::string& text) {
        return eventually([&] { return reader.hasHeard(event, text); });
    };
    open();
    EXPECT_TRUE(hears("object:state-changed:focused:on", "Search"));
    type({XKB_KEY_z, XKB_KEY_i});
    EXPECT_TRUE(hears("object:text-changed:insert", "z"));
    EXPECT_TRUE(hears("object:state-changed:selected:on", "Zinc"));
    EXPECT_TRUE(reader.setText("quorvel", "Search", "zin"));
    EXPECT_TRUE(asksFor("zin"));
    EXPECT_EQ(reader.text("quorvel", "Search"), "zin");
}

/// A window manager that runs the program for a shortcut of its own.
class LaunchersOfAManager : public AppLaunchers {
protected:
    void SetUp() override
    {
        const auto script = server.folder() / "launcher";
        std::ofstream(script) << "#!/bin/sh\necho >> '" << runs.string() << "'\nexec '"
                              << QUORVEL_PROGRAM << "' --launcher\n";
        std::filesystem::permissions(script, std::filesystem::perms::owner_all);
        const auto folder = server.folder() / "config" / "openbox";
        std::filesystem::create_directories(folder);
        std::ofstream(folder / "rc.xml")
            << R"(<openbox_config xmlns="http://openbox.org/3.4/rc"><keyboard>)"
            << R"(<keybind key="W-space"><action name="Execute"><command>)" << script.string()
            << "</command></action></keybind></keyboard></openbox_config>";
        manager.beginReplace();
        manager.waitUntilManaging();
        setRepeats(false); // a key that is down while all is slow would run the program again
        AppLaunchers::SetUp();
    }
    void holdShortcut()
    {
        keyboard.press(kSuper);
        keyboard.press(kSpace);
    }
    void setRepeats(bool areOn)
    {
        const std::vector<std::string> command{"xset", "r", areOn ? "on" : "off"};
        ASSERT_EQ((Process{command, server.environment()}.waitForEnd()), 0);
    }
    void repeat() { keyboard.press(kSpace); }
    void letGo()
    {
        keyboard.release(kSpace);
        keyboard.release(kSuper);
    }

    static constexpr std::uint8_t kSpace = 65;
    static constexpr std::uint8_t kSuper = 133;
    const std::filesystem::path runs = server.folder() / "runs";
};

// Faults: the shortcut that opens it does not close it, since the manager does not receive it then;
// what it repeats while it is held closes it at once, is typed, or opens it again.
TEST_P(LaunchersOfAManager, closeByTheShortcutThatOpensThem)
{
    holdShortcut();
    ASSERT_TRUE(isOpen());
    setRepeats(true);
    repeat();
    keyboard.release(kSuper);
    type({XKB_KEY_z});
    EXPECT_TRUE(asksFor("z"));
    keyboard.release(kSpace);

    holdShortcut();
    EXPECT_TRUE(isOpen(false));
    repeat();
    letGo();
    setRepeats(false);
    holdShortcut();
    EXPECT_TRUE(isOpen());
    letGo();
    EXPECT_EQ(readFile(runs), "\n\n");
    keyboard.chord(kSuper, kSpace);
    EXPECT_TRUE(isOpen(false));
}

INSTANTIATE_TEST_SUITE_P(, LauncherFields, testing::Values(ManagerKind::openbox), managerName);
INSTANTIATE_TEST_SUITE_P(, AccessibleLauncher, testing::Values(ManagerKind::openbox), managerName);
INSTANTIATE_TEST_SUITE_P(, LaunchersOfAManager, testing::Values(ManagerKind::openbox), managerName);

}
