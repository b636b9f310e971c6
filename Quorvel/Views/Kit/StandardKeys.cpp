#include "Quorvel/Views/Kit/StandardKeys.h"

namespace quorvel {

namespace {

constexpr KeyCode kPlaceOfW{13};

}

bool closesWindow(const KeyEvent& event)
{
    constexpr auto others = KeyModifier::shift | KeyModifier::option | KeyModifier::command;
    if (!event.has(KeyModifier::control) || event.has(others))
        return false;
    auto& typed = event.charactersIgnoringModifiers;
    bool isLatin = typed.size() == 1 && static_cast<unsigned char>(typed[0]) < 0x80;
    return isLatin ? typed == "w" || typed == "W" : event.keyCode == kPlaceOfW;
}

}
