#include <gmock/gmock.h>

#include "Tests/X11/Support/DesktopFixture.h"
#include "Tests/X11/Support/Keyboard.h"
#include "Tests/X11/Support/SurfaceHost.h"

namespace quorvel::x11tests {

namespace {

using Modifier = HotkeyModifier;

/// By place, as on every keyboard of a PC.
enum Key : std::uint8_t {
    one = 10,
    two = 11,
    control = 37,
    k = 45,
    space = 65,
    capsLock = 66,
    numLock = 77,
    super = 133,
};

constexpr std::uint32_t kOne = 18;
constexpr std::uint32_t kTwo = 19;
constexpr std::uint32_t kK = 40;
constexpr std::uint32_t kSpaceKey = 49;

/// Another program that has shortcuts.
class OtherProgram {
public:
    explicit OtherProgram(const XServer& server) : m_connection(server.display()) { }

    void grab(std::uint8_t key, std::uint16_t modifiers)
    {
        xcb_grab_key(m_connection.get(), false, m_connection.root(), modifiers, key,
            XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
        m_connection.sync();
    }
    void giveBack(std::uint8_t key, std::uint16_t modifiers)
    {
        xcb_ungrab_key(m_connection.get(), key, m_connection.root(), modifiers);
        m_connection.sync();
    }
    /// As a window manager that starts.
    void announceManager()
    {
        const auto window = xcb_generate_id(m_connection.get());
        xcb_create_window(m_connection.get(), 0, window, m_connection.root(), 0, 0, 1, 1, 0,
            XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
        xcb_set_selection_owner(
            m_connection.get(), window, m_connection.atom("WM_S0"), XCB_CURRENT_TIME);
        m_connection.sync();
    }

    /// As a window manager that gives the focus to another window.
    void announceActiveWindow()
    {
        m_connection.setNumbers(m_connection.root(), "_NET_ACTIVE_WINDOW", "WINDOW", {XCB_NONE});
        m_connection.sync();
    }

private:
    Connection m_connection;
};

}

/// The host's shortcuts in the test's own process, without a window manager.
class Shortcuts : public testing::Test {
protected:
    void SetUp() override { run({"xset", "r", "rate", "100", "50"}); }

    void run(const std::vector<std::string>& command) const
    {
        ASSERT_EQ((Process{command, server.environment()}.waitForEnd()), 0) << command.front();
    }
    std::unique_ptr<HotkeyRegistration> have(std::uint32_t keyCode, std::uint32_t modifiers)
    {
        return hotkeys.registerHotkey(keyCode, modifiers, {1, keyCode});
    }
    bool runUntil(const std::function<bool()>& isDone) { return surfaces.host.runUntil(isDone); }
    /// With Super held; whether just that one press arrives.
    bool press(std::uint8_t key)
    {
        const auto before = pressed.size();
        hand.chord(super, key);
        return runUntil([&] { return pressed.size() > before; }) && pressed.size() == before + 1;
    }
    /// Until the key that is held down has come this often.
    void waitForRepeats()
    {
        int presses = 0;
        const auto counting = surfaces.host.connection->event.subscribe(
            [&](auto* event) { presses += (event->response_type & 0x7f) == XCB_KEY_PRESS; });
        EXPECT_TRUE(runUntil([&] { return presses > 3; }));
    }

    XServer server;
    Keyboard hand{server.display()};
    SurfaceHost surfaces{server};
    Hotkeys& hotkeys = surfaces.surfaces.hotkeys();
    std::vector<std::uint32_t> pressed;
    Subscription handler = hotkeys.installHandler([this](const HotkeyID& id) {
        pressed.push_back(id.id);
        return HotkeyStatus::handled;
    });
};

// Faults: a held shortcut comes again and again; it is typed into the panel that has the keyboard;
// a panel that closes under a held shortcut lets its repeats open it again, or its release get
// lost, so that the next press passes for a repeat; two keys that overlap, of which one is stuck.
TEST_F(Shortcuts, areReportedOnceHoweverLongTheyAreHeld)
{
    const auto opens = have(kSpaceKey, Modifier::command);
    const auto first = have(kOne, Modifier::command);
    const auto second = have(kTwo, Modifier::command);
    ASSERT_EQ(opens->outcome(), HotkeyOutcome::registered);
    hand.press(super);
    hand.press(space);
    waitForRepeats();
    EXPECT_EQ(pressed.size(), 1U);

    SurfaceRecord record;
    auto panel = surfaces.make(PanelKind::launcher, record);
    panel->setFrame({10, 10, 100, 50});
    panel->makeKeyAndOrderFront();
    EXPECT_TRUE(record.hasKeyboard);
    waitForRepeats();
    hand.release(space);
    hand.release(super);
    EXPECT_TRUE(press(space));
    EXPECT_EQ(record.field.text, "");

    hand.press(super);
    hand.press(space);
    EXPECT_TRUE(runUntil([&] { return pressed.size() == 3; }));
    panel->orderOut();
    waitForRepeats();
    hand.release(space);
    hand.release(super);
    EXPECT_TRUE(press(space));
    EXPECT_EQ(pressed.size(), 4U);
    EXPECT_EQ(record.field.text, "");

    hand.press(super);
    hand.press(one);
    hand.press(two);
    hand.release(one);
    EXPECT_TRUE(runUntil([&] { return pressed.size() == 6; }));
    hand.release(two);
    hand.release(super);
    EXPECT_TRUE(press(two));
    EXPECT_THAT(pressed,
        testing::ElementsAre(kSpaceKey, kSpaceKey, kSpaceKey, kSpaceKey, kOne, kTwo, kTwo));
}

// Faults: a key whose release went to another program, or that is still down when a panel takes the
// keyboard, passes for held, so that its next press is none, or for pressed anew.
TEST_F(Shortcuts, keepTrackOfTheirKeysWhileTheKeyboardChangesHands)
{
    const auto first = have(kOne, Modifier::command);
    const auto second = have(kTwo, Modifier::command);
    SurfaceRecord record;
    auto panel = surfaces.make(PanelKind::launcher, record);
    panel->setFrame({10, 10, 100, 50});
    const auto hold = [&](std::size_t presses) {
        hand.press(super);
        hand.press(one);
        hand.press(two);
        EXPECT_TRUE(runUntil([&] { return pressed.size() == presses; }));
        hand.release(one); // and with it the grab
    };
    hold(2);
    hand.release(two);
    hand.release(super);
    panel->makeKeyAndOrderFront();
    EXPECT_TRUE(press(two)) << "it came up before";
    EXPECT_TRUE(press(one));
    panel->orderOut();

    hold(6);
    panel->makeKeyAndOrderFront();
    waitForRepeats();
    EXPECT_EQ(pressed.size(), 6U) << "it was down all the time";
    hand.release(two);
    hand.release(super);
    EXPECT_TRUE(press(two));
    EXPECT_EQ(record.field.text, "");
}

// Faults: a lock hides the shortcut, or half of its grabs stay when another program has one of
// them; one's own second registration replaces the first; what becomes free is not noticed; a
// modifier that moves takes the shortcut along only in name; keys that are not there.
TEST_F(Shortcuts, followTheModifiersAndWhatOthersHave)
{
    auto shortcut = have(kSpaceKey, Modifier::command);
    auto same = have(kSpaceKey, Modifier::command);
    EXPECT_EQ(same->outcome(), HotkeyOutcome::taken);
    shortcut.reset();
    EXPECT_TRUE(runUntil([&] { return same->outcome() == HotkeyOutcome::registered; }));
    for (auto lock : {capsLock, numLock}) {
        hand.tap(lock);
        EXPECT_TRUE(press(space)) << "lock " << int{lock};
    }
    EXPECT_EQ(have(0xFFFF, Modifier::command)->outcome(), HotkeyOutcome::failed);
    EXPECT_EQ(have(kK, 0x400)->outcome(), HotkeyOutcome::failed);

    OtherProgram other{server};
    other.grab(k, XCB_MOD_MASK_4 | XCB_MOD_MASK_LOCK);
    auto refused = have(kK, Modifier::command);
    EXPECT_EQ(refused->outcome(), HotkeyOutcome::taken);
    OtherProgram third{server};
    third.grab(k, XCB_MOD_MASK_4);
    other.giveBack(k, XCB_MOD_MASK_4 | XCB_MOD_MASK_LOCK);
    third.giveBack(k, XCB_MOD_MASK_4);
    int changes = 0;
    const auto telling = hotkeys.outcomesDidChange.subscribe([&] { ++changes; });
    other.announceManager();
    EXPECT_TRUE(runUntil([&] { return refused->outcome() == HotkeyOutcome::registered; }));
    EXPECT_EQ(changes, 1);

    const std::vector<std::function<void()>> occasions{
        [&] { hotkeys.askAgain(); },
        [&] { other.announceActiveWindow(); },
        [&] { run({"xmodmap", "-e", "keycode 248 = F35"}); },
    };
    for (std::size_t index = 0; index < occasions.size(); ++index) {
        refused.reset();
        other.grab(k, XCB_MOD_MASK_4);
        refused = have(kK, Modifier::command);
        EXPECT_EQ(refused->outcome(), HotkeyOutcome::taken);
        other.giveBack(k, XCB_MOD_MASK_4);
        occasions[index]();
        EXPECT_TRUE(runUntil([&] { return refused->outcome() == HotkeyOutcome::registered; }))
            << "occasion " << index;
    }

    for (const auto* const modifier : {"mod3", "mod4"}) {
        run({"xmodmap", "-e", "clear mod3", "-e", "clear mod4", "-e",
            std::string{"add "} + modifier + " = Super_L"});
        const auto before = pressed.size();
        EXPECT_TRUE(runUntil([&] {
            hand.chord(super, space);
            return pressed.size() > before;
        })) << modifier;
    }
}

// Fault: after a change of the map, Alt means one thing for shortcuts and another for keys and
// clicks.
TEST_F(Shortcuts, followTheModifiersTogetherWithKeysAndClicks)
{
    xdg::x11::Keyboard keyboard{*surfaces.host.connection};
    constexpr std::uint16_t first = XCB_MOD_MASK_1;
    constexpr std::uint16_t fourth = XCB_MOD_MASK_4;
    for (const bool isPrepared : {false, true}) {
        if (isPrepared)
            keyboard.prepare();
        for (const bool isSwapped : {true, false}) {
            run({"xmodmap", "-e", "clear mod1", "-e", "clear mod4", "-e",
                isSwapped ? "add mod4 = Alt_L" : "add mod1 = Alt_L", "-e",
                isSwapped ? "add mod1 = Super_L" : "add mod4 = Super_L"});
            EXPECT_TRUE(runUntil([&] {
                const auto& map = keyboard.modifiers();
                return map.modifiersIn(isSwapped ? fourth : first) == KeyModifier::option
                    && map.modifiersIn(isSwapped ? first : fourth) == KeyModifier::command;
            })) << isPrepared
                << isSwapped;
        }
    }
}

// The global shortcut of the built program.
class GlobalShortcut : public UnderEachManager {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(bar.appears());
        set("hotkeyKeyCode=49");
        set(isIcewm ? "hotkeyModifiers=4096" : "hotkeyModifiers=256");
        ASSERT_TRUE(isSaid("registered"));
    }
    void set(const std::string& assignment)
    {
        const auto result = run({"--set", assignment});
        EXPECT_EQ(result.status, 0) << result.error;
    }
    testing::AssertionResult isSaid(const std::string& wanted)
    {
        return eventually([&] {
            const auto said = bar.state().hotkey;
            return testing::AssertionResult(said == wanted) << said.value_or("none");
        });
    }
    testing::AssertionResult isOpen(bool isWanted)
    {
        return eventually([&] {
            const auto launcher = bar.state().launcher;
            return isWanted ? launcher && launcher->keyFocus && launcher->query.empty() : !launcher;
        });
    }
    /// Opens the launcher, and closes it.
    void use(const std::string& when)
    {
        for (const bool isWanted : {true, false}) {
            hand.chord(isIcewm ? control : super, space);
            EXPECT_TRUE(isOpen(isWanted)) << when;
        }
    }

    /// It keeps every combination with Super to itself once Super is down.
    const bool isIcewm = GetParam() == ManagerKind::icewm;
    Keyboard hand{server.display()};
    Bar bar{server};
};

// Faults: a lock, or another layout, hides it; it types a space; it does not close what it opened;
// what another program has is said to work, or does not come back; the other shortcut opens
// nothing, or the launcher.
TEST_P(GlobalShortcut, opensAndClosesTheLauncherInEveryStateOfTheKeyboard)
{
    use("at first");
    hand.tap(capsLock);
    use("with Caps Lock");
    hand.tap(numLock);
    use("with Num Lock too");
    hand.tap(capsLock);
    hand.tap(numLock);
    for (const std::string layout : {"de", "ru"}) {
        ASSERT_EQ((Process{{"setxkbmap", layout}, server.environment()}.waitForEnd()), 0);
        use(layout);
    }
    set("findModifiers=4096");
    set("findKeyCode=40");
    ASSERT_TRUE(eventually([&] { return bar.state().findHotkey == "registered"; }));
    for (const bool isWanted : {true, false}) {
        hand.chord(control, k);
        EXPECT_TRUE(eventually([&] {
            const auto state = bar.state();
            return !state.launcher && state.finder.has_value() == isWanted;
        })) << "the list of windows";
    }
    OtherProgram other{server};
    other.grab(k, XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1);
    set("hotkeyModifiers=6144");
    set("hotkeyKeyCode=40");
    EXPECT_TRUE(isSaid("taken"));
}

INSTANTIATE_TEST_SUITE_P(, GlobalShortcut,
    testing::Values(
        ManagerKind::openbox, ManagerKind::xfwm4, ManagerKind::metacity, ManagerKind::icewm),
    managerName);

/// What they do with each item, the tests in memory know.
using NumberKeys = UnderOpenbox;

// Faults: the keys are not grabbed, or their presses mean other places than the bar shows.
TEST_F(NumberKeys, bringTheWindowsForwardThatAreAtThosePlaces)
{
    Keyboard hand{server.display()};
    Bar bar{server};
    ASSERT_TRUE(bar.appears());
    Client client{server};
    std::vector<xcb_window_t> windows;
    for (const std::string title : {"first", "second"}) {
        windows.push_back(client.open({.title = title}));
        ASSERT_TRUE(getsChip(bar, windows.back()));
        ASSERT_TRUE(becomesActive(windows.back()));
    }
    ASSERT_TRUE(settles(bar));
    ASSERT_EQ(run({"--set", "numberKeys=true"}).status, 0);
    hand.chord(super, one);
    EXPECT_TRUE(becomesActive(windows[0]));
    hand.chord(super, two);
    EXPECT_TRUE(becomesActive(windows[1]));
}

}
