#include "Hosts/MacOS/Rules/KeyTable.h"

#include <string_view>
#include <utility>

namespace quorvel {

namespace {

bool isKeyCharacter(std::string_view utf8)
{
    if (utf8.size() != 3 || utf8[0] != '\xEF')
        return false;
    const int character = 0xF000 | (utf8[1] & 0x3F) << 6 | (utf8[2] & 0x3F);
    return character >= key_character::kFirst && character <= key_character::kLast;
}

std::string typed(std::string characters)
{
    return isKeyCharacter(characters) ? std::string{} : std::move(characters);
}

}

KeyEvent keyEventOf(SystemKeyPress press)
{
    return {KeyCode{press.keyCode}, typed(std::move(press.characters)),
        typed(std::move(press.charactersIgnoringModifiers)), keyModifiersOf(press.modifierFlags),
        press.isRepeat};
}

char16_t menuCharacterOf(KeyCode key)
{
    switch (key) {
    case KeyCode::enter:
        return u'\r';
    case KeyCode::backspace:
        return u'\b';
    case KeyCode::forwardDelete:
        return key_character::kForwardDelete;
    default:
        return 0;
    }
}

}
