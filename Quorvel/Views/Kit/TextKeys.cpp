#include "Quorvel/Views/Kit/TextKeys.h"

#include <algorithm>

namespace quorvel {

namespace {

using Kind = TextCommand::Kind;

/// A shortcut by its letter; by the place of the key where the layout has no Latin letters.
struct Shortcut {
    char letter;
    KeyCode key;
    Kind kind;
};
constexpr Shortcut kShortcuts[] = {
    {'a', KeyCode{0}, Kind::selectAll},
    {'x', KeyCode{7}, Kind::cut},
    {'c', KeyCode{8}, Kind::copy},
    {'v', KeyCode{9}, Kind::paste},
    {'z', KeyCode{6}, Kind::undo},
    {'y', KeyCode{16}, Kind::redo},
};

bool isLatin(const std::string& characters)
{
    return characters.size() == 1 && static_cast<unsigned char>(characters[0]) < 0x80;
}

char lowered(char letter)
{
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

std::optional<TextCommand> shortcutOf(const KeyEvent& event)
{
    auto& typed = event.charactersIgnoringModifiers;
    auto* found = std::ranges::find_if(kShortcuts, [&](auto& shortcut) {
        return isLatin(typed) ? lowered(typed[0]) == shortcut.letter
                              : event.keyCode == shortcut.key;
    });
    if (found == std::end(kShortcuts))
        return {};
    bool isShifted = event.has(KeyModifier::shift);
    if (isShifted && found->kind != Kind::undo)
        return {};
    return TextCommand{isShifted ? Kind::redo : found->kind};
}

/// The keys of a block that many keyboards have beside their letters.
std::optional<TextCommand> clipboardKeyOf(const KeyEvent& event)
{
    bool isControl = event.has(KeyModifier::control);
    bool isShift = event.has(KeyModifier::shift);
    if (event.keyCode == KeyCode::insert && isControl != isShift)
        return TextCommand{isShift ? Kind::paste : Kind::copy};
    if (event.keyCode == KeyCode::forwardDelete && isShift && !isControl)
        return TextCommand{Kind::cut};
    return {};
}

}

std::optional<TextCommand> textCommandOf(const KeyEvent& event)
{
    if (event.has(KeyModifier::option) || event.has(KeyModifier::command))
        return {};
    if (auto command = clipboardKeyOf(event))
        return command;
    bool isControl = event.has(KeyModifier::control);
    auto unit = isControl ? TextUnit::word : TextUnit::character;
    auto move = event.has(KeyModifier::shift) ? CaretMove::selecting : CaretMove::alone;
    switch (event.keyCode) {
    case KeyCode::left:
        return TextCommand{Kind::moveLeft, unit, move};
    case KeyCode::right:
        return TextCommand{Kind::moveRight, unit, move};
    case KeyCode::home:
        return TextCommand{Kind::moveToStart, TextUnit::all, move};
    case KeyCode::end:
        return TextCommand{Kind::moveToEnd, TextUnit::all, move};
    case KeyCode::backspace:
        return TextCommand{Kind::eraseBackward, unit};
    case KeyCode::forwardDelete:
        return TextCommand{Kind::eraseForward, unit};
    default:
        break;
    }
    if (isControl)
        return shortcutOf(event);
    return event.typesText() ? std::optional{TextCommand{Kind::type}} : std::nullopt;
}

}
