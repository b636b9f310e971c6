#include <cstdlib>
#include <thread>

#include <glib.h>
#include <gtest/gtest.h>

#include "Hosts/X11/Connection.h"
#include "Hosts/X11/Keyboard.h"
#include "Tests/X11/Support/Eventually.h"
#include "Tests/X11/Support/XServer.h"

namespace quorvel::x11tests {

// Faults: a key goes by what is printed on it, or types what another layout has there; a layout
// that is chosen later is not followed; a modifier is lost, or hides what the key is.
TEST(KeyboardOfTheServer, saysPlacesAndCharactersAsItIsSetUpNow)
{
    constexpr xcb_keycode_t z = 52, capsLock = 66, keypad4 = 83;
    constexpr std::uint16_t control = XCB_MOD_MASK_CONTROL, shift = XCB_MOD_MASK_SHIFT,
                            alt = XCB_MOD_MASK_1, numLock = XCB_MOD_MASK_2, secondGroup = 1 << 13;
    const XServer server;
    setenv("DISPLAY", server.display().c_str(), 1);
    std::string problem;
    const auto connection = xdg::x11::Connection::open(problem);
    unsetenv("DISPLAY");
    ASSERT_TRUE(connection) << problem;
    xdg::x11::Keyboard keyboard{*connection};
    keyboard.prepare();
    auto press = [&](xcb_keycode_t key, std::uint16_t state = 0) {
        xcb_key_press_event_t event{};
        event.detail = key;
        event.state = state;
        const auto said = keyboard.press(event);
        keyboard.release(event);
        return said;
    };
    EXPECT_EQ(press(z).characters, "z");
    EXPECT_EQ(press(z).keyCode, KeyCode{6});
    EXPECT_EQ(press(capsLock).keyCode, KeyCode{57});

    Process{{"setxkbmap", "de,us", "-option", "caps:escape"}, server.environment()}.waitForEnd();
    EXPECT_TRUE(eventually([&] {
        g_main_context_iteration(nullptr, false);
        return press(z).characters == "y";
    }));
    EXPECT_EQ(press(z).keyCode, KeyCode{6});
    EXPECT_EQ(press(z, secondGroup).characters, "z");
    EXPECT_EQ(press(z, shift).charactersIgnoringModifiers, "Y");
    EXPECT_EQ(press(z, control).characters, "\x19");
    EXPECT_EQ(press(z, control).charactersIgnoringModifiers, "y");
    EXPECT_EQ(press(z, control | alt).modifiers, KeyModifier::control | KeyModifier::option);
    EXPECT_EQ(press(capsLock).keyCode, KeyCode::escape);
    EXPECT_EQ(press(keypad4).keyCode, KeyCode::left);
    EXPECT_EQ(press(keypad4, numLock).keyCode, KeyCode{86});
    EXPECT_EQ(press(keypad4, numLock).characters, "4");

    xcb_key_press_event_t held{};
    held.detail = z;
    EXPECT_FALSE(keyboard.press(held).isRepeat);
    EXPECT_TRUE(keyboard.press(held).isRepeat);
}

}
