#include "Hosts/MacOS/Rules/EditingShortcut.h"

namespace quorvel {

std::optional<EditingAction> editingActionOf(const KeyEvent& event)
{
    const auto command = event.modifiers & ~KeyModifier::shift;
    // Layouts without Latin letters have them where Command is held.
    if (command != KeyModifier::command || event.characters.size() != 1)
        return {};
    const bool isShifted = event.has(KeyModifier::shift);
    const char letter = event.characters[0];
    if (letter == 'z' || letter == 'Z')
        return isShifted ? EditingAction::redo : EditingAction::undo;
    if (isShifted)
        return {};
    switch (letter) {
    case 'x':
        return EditingAction::cut;
    case 'c':
        return EditingAction::copy;
    case 'v':
        return EditingAction::paste;
    case 'a':
        return EditingAction::selectAll;
    default:
        return {};
    }
}

}
