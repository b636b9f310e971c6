#include "Hosts/MacOS/Rules/StandardShortcut.h"

namespace quorvel {

std::optional<StandardAction> standardActionOf(const KeyEvent& event)
{
    const auto command = event.modifiers & ~KeyModifier::shift;
    // Layouts without Latin letters have them where Command is held.
    if (command != KeyModifier::command || event.characters.size() != 1)
        return {};
    const bool isShifted = event.has(KeyModifier::shift);
    const char letter = event.characters[0];
    if (letter == 'z' || letter == 'Z')
        return isShifted ? StandardAction::redo : StandardAction::undo;
    if (isShifted)
        return {};
    switch (letter) {
    case 'w':
        return StandardAction::close;
    case 'x':
        return StandardAction::cut;
    case 'c':
        return StandardAction::copy;
    case 'v':
        return StandardAction::paste;
    case 'a':
        return StandardAction::selectAll;
    default:
        return {};
    }
}

}
