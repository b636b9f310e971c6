#pragma once

#include <optional>

#include "Quorvel/Platform/KeyEvent.h"
#include "Quorvel/Views/Kit/TextEditing.h"

namespace quorvel {

/// What a key does in a text field of ours. Left and right are those of the screen.
struct TextCommand {
    enum class Kind {
        moveLeft,
        moveRight,
        moveToStart,
        moveToEnd,
        eraseBackward,
        eraseForward,
        selectAll,
        cut,
        copy,
        paste,
        undo,
        redo,
        type, ///< the characters of the event
    };

    Kind kind = Kind::type;
    TextUnit unit = TextUnit::character;
    CaretMove move = CaretMove::alone;

    friend bool operator==(const TextCommand&, const TextCommand&) = default;
};

/// Absent: the key means nothing here and is for somebody else. Control plays the part of the Mac's
/// Command and Option, since only systems without text fields of their own ask.
std::optional<TextCommand> textCommandOf(const KeyEvent&);

}
