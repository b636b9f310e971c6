#include "Hosts/MacOS/KeyEvents.h"

#include <Carbon/Carbon.h>

#include "Hosts/MacOS/Conversions.h"

namespace quorvel {

namespace {

/// The keys that type nothing have characters of a private use.
std::string typed(NSString* characters)
{
    const bool isKey = characters.length == 1 &&
        [characters characterAtIndex:0] >= NSUpArrowFunctionKey &&
        [characters characterAtIndex:0] <= NSModeSwitchFunctionKey;
    return isKey ? std::string{} : fromSystem(characters);
}

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

}

std::uint64_t modifiersOf(NSEvent* event)
{
    // The bits of the other flags say which of two keys of a kind it was.
    constexpr std::uint64_t known
        = KeyModifier::shift | KeyModifier::control | KeyModifier::option | KeyModifier::command;
    return event.modifierFlags & known;
}

NSString* keyEquivalentOf(KeyCode key)
{
    switch (key) {
    case KeyCode::enter:
        return @"\r";
    case KeyCode::backspace:
        return @"\b";
    case KeyCode::forwardDelete:
        return [NSString stringWithFormat:@"%C", static_cast<unichar>(NSDeleteFunctionKey)];
    default:
        return @"";
    }
}

KeyEvent keyEventOf(NSEvent* event)
{
    return {KeyCode{event.keyCode}, typed(event.characters),
        typed(event.charactersIgnoringModifiers), modifiersOf(event),
        static_cast<bool>(event.ARepeat)};
}

}
