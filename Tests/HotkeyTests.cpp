#include <nlohmann/json.hpp>

#include "Quorvel/Core/HotkeyManager.h"
#include "Quorvel/Core/NumberKeys.h"
#include "Quorvel/Core/ShortcutRecorder.h"
#include "Tests/Support/BarFixture.h"

namespace quorvel::test {

namespace {

using Keys = FakeHotkeys::Keys;
using State = HotkeyManager::State;

constexpr std::uint32_t kSpaceKey = 49;
constexpr std::uint32_t kK = 40;
constexpr std::uint32_t kLeftCommand = 55;
constexpr std::uint32_t kEscape = 53;

}

struct HotkeyTest : BarFixture {
    HotkeyManager& hotkeys() { return runtime->hotkeyManager(); }
    FakeHotkeys& system() { return desktop.hotkeys(); }
    void startWith(const std::string& file)
    {
        desktop.files().put(FakeFiles::kSettingsFile, file);
        start();
    }
    ControlReply set(const std::string& assignment)
    {
        return *desktop.control().send({"--set", assignment});
    }
    bool isLauncherOpen()
    {
        desktop.drain();
        return desktop.surfaces().launcher() != nullptr;
    }
    std::string shown()
    {
        auto& shortcut = hotkeys().currentShortcut().value();
        return shortcut ? shortcut->displayString() : "none";
    }
};

// Faults: a shortcut of another program opens the launcher and cannot close it; it closes what it
// has not opened; it stays ours when the launcher is closed.
TEST_F(HotkeyTest, ofAnotherProgramClosesTheLauncherThatItHasOpened)
{
    start();
    const Keys other{kSpaceKey, HotkeyModifier::command};
    const auto ask = [&] {
        EXPECT_EQ(desktop.control().send({"--launcher"})->exitStatus, 0);
        return isLauncherOpen();
    };
    system().hold(other);
    ASSERT_TRUE(ask());
    system().hold({});
    EXPECT_FALSE(system().press({kK, HotkeyModifier::command}));
    EXPECT_TRUE(isLauncherOpen());
    EXPECT_TRUE(system().press(other));
    EXPECT_FALSE(isLauncherOpen());
    EXPECT_FALSE(system().press(other));

    ASSERT_TRUE(ask()); // from a terminal
    EXPECT_FALSE(system().press(other));
    EXPECT_TRUE(isLauncherOpen());
    system().hold(other);
    EXPECT_FALSE(ask()) << "by a host that leaves the shortcut to the other program";
    EXPECT_FALSE(system().press(other));
}

// Faults: half a shortcut is registered; a change that comes from the command line, or clears one
// field, is not followed; the press opens but does not close; a shortcut that is cleared still
// works.
TEST_F(HotkeyTest, followsTheSettingsAndOpensAndClosesTheLauncher)
{
    startWith(R"({"hotkeyKeyCode": 49})");
    EXPECT_EQ(system().registrations(), 0);
    EXPECT_EQ(hotkeys().state().value(), State::none);

    EXPECT_EQ(set("hotkeyModifiers=2048").exitStatus, 0);
    EXPECT_EQ(shown(), "⌥Space");
    EXPECT_TRUE(system().press({kSpaceKey, 0x800}));
    EXPECT_TRUE(isLauncherOpen());
    EXPECT_TRUE(system().press({kSpaceKey, 0x800}));
    EXPECT_FALSE(isLauncherOpen());

    set("hotkeyKeyCode=40");
    EXPECT_EQ(system().registered(), (std::vector{Keys{kK, 0x800}}));
    set("hotkeyModifiers=null");
    EXPECT_EQ(shown(), "none");
    EXPECT_FALSE(system().press({kK, 0x800}));
    EXPECT_EQ(system().ask({HotkeyManager::hotkeyID.signature, 99}), HotkeyStatus::notHandled);
}

// Faults: the order of modifiers follows the fingers; a flag that is none of the four is stored, or
// a key code's upper half; Caps Lock alone makes a shortcut; recording the same shortcut again does
// not ask the system again.
TEST_F(HotkeyTest, recordsWhatItStoresAndShows)
{
    start();
    constexpr std::uint64_t capsLock = 1U << 16;
    EXPECT_FALSE(hotkeys().recordShortcut(kK, capsLock));
    EXPECT_TRUE(hotkeys().recordShortcut(0xABC0000 | kK,
        capsLock | KeyModifier::command | KeyModifier::shift | KeyModifier::option
            | KeyModifier::control));
    EXPECT_EQ(shown(), "⌃⌥⇧⌘K");
    EXPECT_EQ(runtime->userSettings().hotkeyKeyCode(), kK);
    EXPECT_EQ(runtime->userSettings().hotkeyModifiers(), 0x1B00U);
    EXPECT_TRUE(hotkeys().recordShortcut(kSpaceKey, KeyModifier::option));
    int before = system().registrations();
    hotkeys().setCurrentShortcut(KeyboardShortcut{kSpaceKey, 0x800});
    EXPECT_EQ(system().registrations(), before + 1);
    EXPECT_EQ(system().registered().size(), 1U);
    EXPECT_EQ((KeyboardShortcut{111, 0x100}.displayString()), "⌘F12");
    EXPECT_EQ((KeyboardShortcut{10, 0x1000}.displayString()), "⌃?");

    nlohmann::json json = KeyboardShortcut{kK, 0x1800};
    EXPECT_EQ(json.dump(), R"({"keyCode":40,"modifiers":6144})");
    EXPECT_EQ(keyboardShortcutFrom(json), (KeyboardShortcut{kK, 0x1800}));
    for (auto* text : {"[]", R"({"keyCode":40})", R"({"keyCode":40,"modifiers":-1})",
             R"({"keyCode":4294967296,"modifiers":0})", R"({"keyCode":"a","modifiers":0})"})
        EXPECT_FALSE(keyboardShortcutFrom(nlohmann::json::parse(text))) << text;
}

// Faults: a modifier alone, or a letter alone, ends recording; Escape stores itself; the old
// shortcut fires while a new one is recorded, or is gone after Escape; two recorders, of which the
// first to end revives it.
TEST_F(HotkeyTest, isSuspendedWhileAShortcutIsRecorded)
{
    startWith(R"({"hotkeyKeyCode": 49, "hotkeyModifiers": 2048})");
    ShortcutRecorder recorder{hotkeys()};
    EXPECT_FALSE(recorder.keyPressed(kK, KeyModifier::control)) << "before it records";
    recorder.start();
    EXPECT_FALSE(system().press({kSpaceKey, 0x800}));
    EXPECT_TRUE(recorder.keyPressed(kLeftCommand, KeyModifier::command));
    EXPECT_TRUE(recorder.keyPressed(kK, 0));
    EXPECT_TRUE(recorder.isRecording().value());
    EXPECT_TRUE(recorder.keyPressed(kEscape, KeyModifier::control));
    EXPECT_FALSE(recorder.isRecording().value());
    EXPECT_EQ(system().registered(), (std::vector{Keys{kSpaceKey, 0x800}}));

    recorder.start();
    auto other = hotkeys().suspend();
    EXPECT_TRUE(recorder.keyPressed(kK, KeyModifier::command));
    EXPECT_EQ(shown(), "⌘K");
    EXPECT_TRUE(system().registered().empty());
    other = {};
    EXPECT_EQ(system().registered(), (std::vector{Keys{kK, 0x100}}));
    other = hotkeys().suspend();
    runtime.reset();
}

// Faults: a refusal loses the stored shortcut, or leaves the old one registered; what becomes free
// later is not told.
TEST_F(HotkeyTest, saysThatTheShortcutIsTaken)
{
    system().takeElsewhere({kK, 0x100});
    startWith(R"({"hotkeyKeyCode": 49, "hotkeyModifiers": 2048})");
    EXPECT_EQ(hotkeys().state().value(), State::registered);
    hotkeys().recordShortcut(kK, KeyModifier::command);
    EXPECT_EQ(hotkeys().state().value(), State::taken);
    EXPECT_TRUE(system().registered().empty());
    EXPECT_EQ(runtime->userSettings().hotkeyKeyCode(), kK);
    auto report = nlohmann::json::parse(desktop.control().send({"--state"})->output);
    EXPECT_EQ(report["hotkey"], (nlohmann::json{{"shortcut", "⌘K"}, {"state", "taken"}}));

    system().giveBackElsewhere({kK, 0x100});
    EXPECT_EQ(hotkeys().state().value(), State::registered);
}

// Faults: keys that are taken from others while bars do not hide, or from the number keys; ones
// that are not taken when that changes, or kept; a press that opens a list, or does not come back.
TEST_F(HotkeyTest, sendsTheBarAwayAndGetsItBackWhileBarsHide)
{
    startWith(R"({"more": {"numberKeys": true, "barKeyCode": 19, "barModifiers": 256}})");
    const Keys two{19, HotkeyModifier::command};
    auto report
        = [this] { return nlohmann::json::parse(desktop.control().send({"--state"})->output); };
    EXPECT_EQ(report()["barHotkey"], (nlohmann::json{{"shortcut", "⌘2"}, {"state", "none"}}));
    EXPECT_EQ(system().registered().size(), 18U) << "the number key has it";
    set("autoHide=true");
    EXPECT_EQ(report()["barHotkey"]["state"], "registered");
    EXPECT_EQ(report()["numberKeys"]["taken"].size(), 0U);
    for (double slide : {1, 0}) {
        EXPECT_TRUE(system().press(two));
        desktop.advance(seconds(1));
        EXPECT_EQ(panel().slide(), slide);
    }
    EXPECT_FALSE(isLauncherOpen());

    set("hotkeyKeyCode=19");
    set("hotkeyModifiers=256");
    EXPECT_EQ(report()["barHotkey"]["state"], "doubled");
    set("hotkeyModifiers=null");
    EXPECT_EQ(report()["barHotkey"]["state"], "registered");
    set("numberKeys=false");
    EXPECT_EQ(system().registered(), (std::vector{two}));
    set("autoHide=false");
    EXPECT_TRUE(system().registered().empty());
}

struct NumberKeyTest : ThreeWindows {
    FakeHotkeys& system() { return desktop.hotkeys(); }
    void pressNumber(int number, std::uint32_t modifiers = HotkeyModifier::command)
    {
        auto key = NumberKeys::kKeyCodes[static_cast<std::size_t>(number - 1)];
        EXPECT_TRUE(system().press({key, modifiers})) << number;
        desktop.drain();
    }
    std::ptrdiff_t timesShown(const std::string& text)
    {
        return std::ranges::count(panel().render().texts(), text);
    }
};

// Faults: keys that are registered while they are off; a place that counts pins and chips apart, or
// the other end; a click that a key does otherwise; keys that would take what the user types.
TEST_F(NumberKeyTest, useWhatIsAtThatPlaceAsAClickDoes)
{
    pin("player");
    desktop.drain();
    EXPECT_TRUE(system().registered().empty());
    runtime->userSettings().setNumberKeys(true);
    EXPECT_EQ(system().registered().size(), 18U);
    pressNumber(4);
    EXPECT_TRUE(chip(notes)->isFocused);
    pressNumber(4);
    EXPECT_TRUE(chip(notes)->isMinimized);
    pressNumber(1);
    EXPECT_THAT(desktop.workspace().opened(), ElementsAre("/Applications/player"));
    pressNumber(9);
    pressNumber(4, HotkeyModifier::command | HotkeyModifier::shift);
    EXPECT_THAT(desktop.workspace().opened(),
        ElementsAre("/Applications/player", "new /Applications/Editor.app"));

    auto suspension = runtime->hotkeyManager().suspend();
    EXPECT_TRUE(system().registered().empty());
    suspension = {};
    runtime->userSettings().setNumberKeyModifiers(HotkeyModifier::control | HotkeyModifier::shift);
    EXPECT_EQ(system().registered().size(), 9U);
    pressNumber(2, HotkeyModifier::control | HotkeyModifier::shift);
    EXPECT_TRUE(chip(inbox)->isFocused);
    runtime->userSettings().setNumberKeyModifiers(HotkeyModifier::shift);
    EXPECT_EQ(system().registered().front().modifiers, HotkeyModifier::command);
    runtime->userSettings().setNumberKeys(false);
    EXPECT_TRUE(system().registered().empty());
}

// Faults: a key that does nothing is said to work; what becomes free, or is on no longer, is told
// as taken.
TEST_F(NumberKeyTest, sayWhichOfThemAreTaken)
{
    auto report = [this] {
        return nlohmann::json::parse(desktop.control().send({"--state"})->output)["numberKeys"];
    };
    system().takeElsewhere({19, HotkeyModifier::command});
    EXPECT_EQ(report(), nullptr);
    runtime->userSettings().setNumberKeys(true);
    EXPECT_EQ(report(), (nlohmann::json{{"state", "taken"}, {"taken", {"⌘2"}}}));
    system().giveBackElsewhere({19, HotkeyModifier::command});
    EXPECT_EQ(report()["state"], "registered");
    system().takeElsewhere({20, HotkeyModifier::control});
    runtime->userSettings().setNumberKeyModifiers(HotkeyModifier::control);
    EXPECT_THAT(report()["taken"], ElementsAre("⌃3"));
    runtime->userSettings().setNumberKeys(false);
    EXPECT_EQ(report(), nullptr);
}

// Faults: a recorded shortcut loses to our own number key, which stays or does not come back; after
// a press the launcher, or a bar that is walked, keeps the keys that are meant for the window.
TEST_F(NumberKeyTest, giveWayToTheShortcutAndEndWhatHasTheKeyboard)
{
    runtime->userSettings().setNumberKeys(true);
    auto& manager = runtime->hotkeyManager();
    auto recording = manager.suspend();
    manager.setCurrentShortcut(KeyboardShortcut{18, HotkeyModifier::command});
    recording = {};
    EXPECT_EQ(manager.state().value(), HotkeyManager::State::registered);
    EXPECT_EQ(system().registered().size(), 18U);
    pressNumber(1);
    EXPECT_NE(desktop.surfaces().launcher(), nullptr);
    pressNumber(3);
    EXPECT_EQ(desktop.surfaces().launcher(), nullptr);
    EXPECT_TRUE(chip(notes)->isFocused);

    manager.setCurrentShortcut(KeyboardShortcut{19, HotkeyModifier::command});
    EXPECT_EQ(manager.state().value(), HotkeyManager::State::registered);
    EXPECT_EQ(system().registered().size(), 18U);
    desktop.control().send({"--focus"});
    EXPECT_TRUE(panel().hasKeyboard());
    pressNumber(1);
    EXPECT_FALSE(panel().hasKeyboard());
    EXPECT_TRUE(chip(inbox)->isFocused);
}

// Faults: the numbers stay, or are missing on a row that was made anew; a number uses another item
// than the one that shows it, or a key without an item ends the walk.
TEST_F(NumberKeyTest, areShownAndMeantWhileTheKeyboardWalksTheBar)
{
    auto spaces = timesShown("3");
    EXPECT_EQ(timesShown("4"), 0);
    EXPECT_EQ(desktop.control().send({"--focus"})->exitStatus, 0);
    EXPECT_EQ(timesShown("3"), spaces + 1);
    runtime->userSettings().setBarSize(BarSize::large); // makes every view anew
    desktop.drain();
    EXPECT_EQ(timesShown("3"), spaces + 1);
    auto memo = desktop.open(editor, {.title = "Memo", .takesFocus = false});
    settle();
    EXPECT_EQ(timesShown("4"), 1);
    panel().pressKey({.keyCode = KeyCode{22}, .characters = "6"});
    EXPECT_TRUE(panel().hasKeyboard());
    // The key of the 4, where it types something else.
    panel().pressKey({.keyCode = KeyCode{21}, .characters = "'"});
    desktop.advance(seconds(0.5));
    EXPECT_TRUE(chip(memo)->isFocused);
    EXPECT_FALSE(panel().hasKeyboard());
    EXPECT_EQ(timesShown("4"), 0);

    desktop.control().send({"--focus"});
    panel().pressKey({.keyCode = KeyCode{21}, .characters = "$", .modifiers = KeyModifier::shift});
    desktop.drain();
    EXPECT_THAT(desktop.workspace().opened(), ElementsAre("new /Applications/Editor.app"));

    // The launcher ends the walk that it opens over.
    desktop.control().send({"--focus"});
    desktop.control().send({"--launcher"});
    desktop.drain();
    EXPECT_EQ(timesShown("3"), spaces);
}

}
