#include <linux/input-event-codes.h>

#include <gmock/gmock.h>

#include "Hosts/Linux/Keys/KeyTable.h"
#include "Hosts/Linux/Keys/ShortcutText.h"
#include "Quorvel/Platform/Hotkeys.h"

namespace quorvel::xdg {

// Faults: a key that comes back as another one, so that a stored shortcut moves; a row of the table
// that is shifted; keys that only ISO and Japanese keyboards have.
TEST(KeyTable, hasOnePlaceForEachKeyOfTheMac)
{
    std::vector<std::uint32_t> without;
    for (std::uint32_t key = 0; key < 0x80; ++key) {
        if (auto place = deviceCodeOf(key))
            EXPECT_EQ(macKeyCodeOf(*place), key);
        else
            without.push_back(key);
    }
    // Fn, which PCs' keyboards keep to themselves, and numbers that no key has.
    EXPECT_THAT(without, testing::ElementsAre(52, 63, 66, 68, 70, 77, 108, 112, 127));
    for (auto [place, key] : {std::pair{KEY_A, 0}, {KEY_Z, 6}, {KEY_0, 29}, {KEY_GRAVE, 50},
             {KEY_102ND, 10}, {KEY_F12, 111}, {KEY_SYSRQ, 105}, {KEY_KP0, 82}, {KEY_RIGHTMETA, 54},
             {KEY_COMPOSE, 110}, {KEY_RO, 94}, {KEY_YEN, 93}, {KEY_MUHENKAN, 102},
             {KEY_KATAKANAHIRAGANA, 104}, {KEY_F20, 90}, {KEY_DELETE, 117}})
        EXPECT_EQ(deviceCodeOf(static_cast<std::uint32_t>(key)),
            DeviceCode{static_cast<std::uint16_t>(place)});
    EXPECT_EQ(macKeyCodeOf(DeviceCode{KEY_HANGEUL}), 104);
    EXPECT_EQ(macKeyCodeOf(DeviceCode{KEY_MICMUTE}), std::nullopt);
    EXPECT_EQ(deviceCodeOf(0xFFFF), std::nullopt);
}

// Faults: another order of modifiers; a letter that is not there on this layout, or in lower case;
// space, a dead key or broken text as a name.
TEST(ShortcutText, namesKeysAsTheyArePrinted)
{
    using M = HotkeyModifier;
    EXPECT_EQ(shortcutText(40, M::option | M::control), "Ctrl+Alt+K");
    EXPECT_EQ(shortcutText(49, M::command, " "), "Super+Space");
    EXPECT_EQ(shortcutText(126, M::command | M::shift | M::option | M::control),
        "Ctrl+Alt+Shift+Super+Up");
    EXPECT_EQ(shortcutText(6, M::control, "y"), "Ctrl+Y");
    EXPECT_EQ(shortcutText(0, M::control, "ф"), "Ctrl+Ф");
    EXPECT_EQ(shortcutText(27, M::control, "ß"), "Ctrl+ß");
    for (auto* nothing : {"", "\x1B", "\xFF", "ab"})
        EXPECT_EQ(shortcutText(24, M::control, nothing), "Ctrl+=");
    EXPECT_EQ(shortcutText(200, M::command), "Super+Key 200");
}

}
