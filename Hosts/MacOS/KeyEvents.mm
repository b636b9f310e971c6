#include "Hosts/MacOS/KeyEvents.h"

#include <Carbon/Carbon.h>

#include "Hosts/MacOS/Conversions.h"
#include "Hosts/MacOS/Rules/KeyTable.h"

namespace quorvel {

namespace {

static_assert(KeyCode::enter == KeyCode{kVK_Return});
static_assert(KeyCode::keypadEnter == KeyCode{kVK_ANSI_KeypadEnter});
static_assert(KeyCode::tab == KeyCode{kVK_Tab});
static_assert(KeyCode::space == KeyCode{kVK_Space});
static_assert(KeyCode::escape == KeyCode{kVK_Escape});
static_assert(KeyCode::f10 == KeyCode{kVK_F10});
static_assert(KeyCode::home == KeyCode{kVK_Home});
static_assert(KeyCode::end == KeyCode{kVK_End});
static_assert(KeyCode::left == KeyCode{kVK_LeftArrow});
static_assert(KeyCode::right == KeyCode{kVK_RightArrow});
static_assert(KeyCode::down == KeyCode{kVK_DownArrow});
static_assert(KeyCode::up == KeyCode{kVK_UpArrow});
static_assert(KeyCode::backspace == KeyCode{kVK_Delete});
static_assert(KeyCode::insert == KeyCode{kVK_Help});
static_assert(KeyCode::pageUp == KeyCode{kVK_PageUp});
static_assert(KeyCode::pageDown == KeyCode{kVK_PageDown});
static_assert(KeyCode::forwardDelete == KeyCode{kVK_ForwardDelete});
// The headers of macOS 14 have no name for the menu key.
static_assert(KeyCode::menu == KeyCode{0x6E});

static_assert(KeyModifier::shift == NSEventModifierFlagShift);
static_assert(KeyModifier::control == NSEventModifierFlagControl);
static_assert(KeyModifier::option == NSEventModifierFlagOption);
static_assert(KeyModifier::command == NSEventModifierFlagCommand);

static_assert(key_character::kFirst == NSUpArrowFunctionKey);
static_assert(key_character::kForwardDelete == NSDeleteFunctionKey);
static_assert(key_character::kLast == NSModeSwitchFunctionKey);

}

std::uint64_t modifiersOf(NSEvent* event) { return keyModifiersOf(event.modifierFlags); }

NSString* keyEquivalentOf(KeyCode key)
{
    const unichar character = menuCharacterOf(key);
    return character ? [NSString stringWithCharacters:&character length:1] : @"";
}

KeyEvent keyEventOf(NSEvent* event)
{
    return keyEventOf({.keyCode = event.keyCode,
        .characters = fromSystem(event.characters),
        .charactersIgnoringModifiers = fromSystem(event.charactersIgnoringModifiers),
        .modifierFlags = event.modifierFlags,
        .isRepeat = static_cast<bool>(event.ARepeat)});
}

}
