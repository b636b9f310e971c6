#include <clocale>
#include <fstream>

#include <gtest/gtest.h>

#include "Tests/X11/Support/Eventually.h"
#include "Tests/X11/Support/Keyboard.h"
#include "Tests/X11/Support/SurfaceHost.h"

namespace quorvel::x11tests {

namespace {

/// By place, as on every keyboard of a PC.
enum Key : std::uint8_t {
    escape = 9,
    acuteOfGermany = 21,
    backspace = 22,
    q = 24,
    e = 26,
    o = 32,
    hatOfFrance = 34,
    control = 37,
    a = 38,
    grave = 49,
    shift = 50,
    z = 52,
    x = 53,
    c = 54,
    n = 57,
    space = 65,
    capsLock = 66,
    f1 = 67,
    numLock = 77,
    keypad4 = 83,
    rightAlt = 108,
};

}

/// Keys that are really pressed, at the surface that has taken the keyboard.
class TypedKeys : public testing::Test {
protected:
    void SetUp() override
    {
        std::setlocale(LC_CTYPE, "C.UTF-8");
        Process{{"xset", "r", "rate", "100", "50"}, server.environment()}.waitForEnd();
        panel->setFrame({10, 10, 100, 50});
        hand.press(q);
        panel->makeKeyAndOrderFront();
        ASSERT_TRUE(record.hasKeyboard);
    }
    void TearDown() override { std::setlocale(LC_CTYPE, "C"); }

    /// Returns once the layout is in use here too.
    void setLayout(const std::vector<std::string>& arguments, std::uint8_t key, const char* types)
    {
        std::vector<std::string> command{"setxkbmap"};
        command.insert(command.end(), arguments.begin(), arguments.end());
        ASSERT_EQ((Process{command, server.environment()}.waitForEnd()), 0);
        EXPECT_TRUE(eventually([&] { return typedBy([&] { hand.tap(key); }) == types; }));
    }
    /// All that the presses type, once the last of them has arrived.
    template <typename Presses> std::string typedBy(Presses presses)
    {
        record.keys.clear();
        record.field.text.clear();
        presses();
        hand.tap(f1); // types nothing
        EXPECT_TRUE(surfaces.host.runUntil(
            [&] { return !record.keys.empty() && record.keys.back().keyCode == KeyCode{122}; }));
        return record.field.text;
    }
    std::string typedBy(std::initializer_list<Key> keys)
    {
        return typedBy([&] {
            for (auto key : keys)
                hand.tap(key);
        });
    }
    KeyEvent keyOf(std::initializer_list<Key> keys)
    {
        typedBy(keys);
        return record.keys.front();
    }

    XServer server;
    Keyboard hand{server.display()};
    SurfaceHost surfaces{server};
    SurfaceRecord record;
    std::unique_ptr<PanelSurface> panel = surfaces.make(PanelKind::launcher, record);
};

// Faults: a key goes by what is printed on it, or types what another layout has there; a layout
// that is chosen later is not followed; a modifier is lost, or hides what the key is; the shortcut
// that brought the surface up types in it while it is held; a repeat is taken for a press.
TEST_F(TypedKeys, sayPlacesAndCharactersAsTheyAreNow)
{
    int presses = 0;
    const auto counting = surfaces.host.connection->event.subscribe(
        [&](auto* event) { presses += (event->response_type & 0x7f) == XCB_KEY_PRESS; });
    EXPECT_TRUE(surfaces.host.runUntil([&] { return presses > 2; })) << "the held key repeats";
    hand.release(q);
    EXPECT_EQ(typedBy({q}), "q");
    EXPECT_FALSE(record.keys.front().isRepeat);
    hand.press(q);
    record.keys.clear();
    EXPECT_TRUE(surfaces.host.runUntil([&] { return record.keys.size() > 2; }));
    hand.release(q);
    EXPECT_FALSE(record.keys[0].isRepeat);
    EXPECT_TRUE(record.keys[1].isRepeat && record.keys[2].isRepeat);
    EXPECT_EQ(keyOf({z}).characters, "z");
    EXPECT_EQ(keyOf({z}).keyCode, KeyCode{6});
    EXPECT_EQ(keyOf({capsLock, capsLock}).keyCode, KeyCode{57});

    setLayout({"de", "-option", "caps:escape"}, z, "y");
    EXPECT_EQ(keyOf({z}).keyCode, KeyCode{6});
    EXPECT_EQ(keyOf({capsLock}).keyCode, KeyCode::escape);
    EXPECT_EQ(keyOf({keypad4}).keyCode, KeyCode::left);
    EXPECT_EQ(typedBy({numLock, keypad4, numLock}), "4");
    typedBy([&] { hand.chord(control, z); });
    const auto command = record.keys[1];
    EXPECT_EQ(command.characters, "\x19");
    EXPECT_EQ(command.charactersIgnoringModifiers, "y");
    EXPECT_EQ(command.modifiers, KeyModifier::control);
    EXPECT_EQ(typedBy([&] { hand.chord(shift, z); }), "Y");
    EXPECT_EQ(record.keys[1].charactersIgnoringModifiers, "Y");
    setLayout({"ru"}, a, "ф");
    EXPECT_EQ(typedBy([&] { hand.chord(shift, z); }), "Я");
}

// Faults: an accent that is not seen, does not meet its letter, or is typed beside it; one that is
// held down and completes itself; a key that does not fit the accent and is lost, or an accent that
// is not dropped by it; a command that becomes a letter with an accent; a table of the user's that
// is not read; a place that is meant where only the text is.
TEST_F(TypedKeys, composeAccentsAndWhatTheUsersTableHas)
{
    hand.release(q);
    std::ofstream(server.environment().at("HOME") + "/.XCompose")
        << "include \"%L\"\n<Multi_key> <q> <x> : \"→ \"\n";
    setLayout({"de"}, z, "y");
    hand.tap(acuteOfGermany);
    EXPECT_TRUE(surfaces.host.runUntil([&] { return record.field.composition == "´"; }));
    EXPECT_EQ(typedBy({e}), "é");
    EXPECT_EQ(record.field.composition, "");
    EXPECT_EQ(typedBy([&] {
        hand.tap(acuteOfGermany);
        hand.chord(shift, e);
    }),
        "É");
    int presses = 0;
    const auto counting = surfaces.host.connection->event.subscribe(
        [&](auto* event) { presses += (event->response_type & 0x7f) == XCB_KEY_PRESS; });
    EXPECT_EQ(typedBy([&] {
        hand.press(acuteOfGermany);
        EXPECT_TRUE(surfaces.host.runUntil([&] { return presses > 2; }));
        hand.release(acuteOfGermany);
        hand.tap(a);
    }),
        "á");
    EXPECT_EQ(typedBy({acuteOfGermany, space}), "'");
    EXPECT_EQ(record.keys.size(), 1U) << "a space was pressed besides";
    EXPECT_EQ(typedBy({acuteOfGermany, x, e}), "xe");
    EXPECT_EQ(record.field.composition, "");
    EXPECT_EQ(typedBy({acuteOfGermany, escape, e}), "e");
    EXPECT_EQ(record.keys.front().keyCode, KeyCode{14});
    EXPECT_EQ(typedBy({acuteOfGermany, backspace, e}), "e");
    typedBy([&] {
        hand.tap(acuteOfGermany);
        hand.chord(control, a);
        hand.tap(e);
    });
    EXPECT_EQ(record.field.text,
        "\x01"
        "e");

    setLayout({"fr"}, q, "a");
    EXPECT_EQ(typedBy({hatOfFrance, o}), "ô");
    setLayout({"us", "intl", "-option", "compose:ralt"}, q, "q");
    EXPECT_EQ(typedBy([&] {
        hand.chord(shift, grave);
        hand.tap(n);
    }),
        "ñ");
    EXPECT_EQ(typedBy({rightAlt, o, c}), "©");
    EXPECT_EQ(typedBy({rightAlt, q, x, q}), "→ q");
}

}
