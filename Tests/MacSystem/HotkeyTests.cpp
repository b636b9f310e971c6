#include "Hosts/MacOS/System/MacHotkeys.h"
#include "Tests/MacSystem/Support/MacFixture.h"

namespace quorvel::test {

namespace {

constexpr std::uint32_t kSpace = 49;
constexpr std::int32_t kNotHandled = -9874;

Value action(std::int64_t key, std::int64_t modifiers, bool isEnabled)
{
    return dictionary(
        {{"kHISymbolicHotKeyCode", number(key)}, {"kHISymbolicHotKeyModifiers", number(modifiers)},
            {"kHISymbolicHotKeyEnabled", truth(isEnabled)}});
}

}

// Faults: a press that nobody handles is swallowed; the system's own shortcut is said to be free,
// or one that is switched off to be taken; a second registration of ours is lost when the first
// goes; something stays registered.
TEST_F(MacFixture, hotKeysAreCarbons)
{
    {
        MacHotkeys hotkeys;
        auto first = hotkeys.registerHotkey(kSpace, 0x800, {0x5152564C, 1});
        auto second = hotkeys.registerHotkey(kSpace, 0x800, {0x5152564C, 2});
        EXPECT_EQ(first->outcome(), HotkeyOutcome::registered);
        EXPECT_EQ(second->outcome(), HotkeyOutcome::taken);
        EXPECT_EQ(mac.pressHotkey(kSpace, 0x800), kNotHandled);
        std::vector<std::uint32_t> pressed;
        const auto older = hotkeys.installHandler([&](const HotkeyID& id) {
            pressed.push_back(id.id);
            return HotkeyStatus::handled;
        });
        const auto newer = hotkeys.installHandler([](const HotkeyID& id) {
            return id.id == 2 ? HotkeyStatus::handled : HotkeyStatus::notHandled;
        });
        EXPECT_EQ(mac.pressHotkey(kSpace, 0x800), 0);
        int changes = 0;
        const auto telling = hotkeys.outcomesDidChange.subscribe([&] { ++changes; });
        first.reset();
        EXPECT_EQ(second->outcome(), HotkeyOutcome::registered);
        EXPECT_EQ(changes, 1);
        EXPECT_EQ(mac.pressHotkey(kSpace, 0x800), 0);
        EXPECT_THAT(pressed, testing::ElementsAre(1U));
        mac.answer("GetEventParameter", {});
        EXPECT_EQ(mac.pressHotkey(kSpace, 0x800), kNotHandled);

        mac.answer("CopySymbolicHotKeys",
            array({action(kSpace, 0x100, true), action(kSpace, 0x1000, false), null()}));
        EXPECT_EQ(hotkeys.registerHotkey(kSpace, 0x100, {1, 3})->outcome(), HotkeyOutcome::taken);
        EXPECT_EQ(
            hotkeys.registerHotkey(kSpace, 0x1000, {1, 3})->outcome(), HotkeyOutcome::registered);
        EXPECT_EQ(hotkeys.registerHotkey(0xFFFF, 0x100, {1, 3})->outcome(), HotkeyOutcome::failed);
    }
    EXPECT_EQ(SimulatedMac::hotkeyCount(), 0U);
}

}
