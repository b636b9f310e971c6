#pragma once

#include <optional>

#include "Quorvel/Platform/KeyEvent.h"

namespace quorvel {

/// What the entries of an "Edit" menu do. A program without a menu bar has none, so nobody would
/// tell a text field of its keys.
enum class EditingAction { undo, redo, cut, copy, paste, selectAll };

/// Absent: the key is none of theirs.
std::optional<EditingAction> editingActionOf(const KeyEvent&);

}
