#pragma once

#include <optional>

#include "Quorvel/Platform/KeyEvent.h"

namespace quorvel {

/// What the entries of the menus "File" and "Edit" do that every program has. A program without a
/// menu bar has none, so nobody would tell its windows and text fields of their keys.
enum class StandardAction { close, undo, redo, cut, copy, paste, selectAll };

/// Absent: the key is none of theirs.
std::optional<StandardAction> standardActionOf(const KeyEvent&);

}
