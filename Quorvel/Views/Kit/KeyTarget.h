#pragma once

#include "Quorvel/Platform/Geometry.h"
#include "Quorvel/Platform/KeyEvent.h"
#include "Quorvel/Platform/TextInput.h"

namespace quorvel {

class View;

/// What the keyboard does to a view: keys, typed text, and the walk from view to view.
///
/// A key goes to the view with the keyboard, then to each of its ancestors until one uses it, and
/// only then to the keyboard walk. Main thread.
class KeyTarget {
public:
    virtual ~KeyTarget() = default;

    /// Whether the keyboard walk stops here.
    virtual bool takesKeyboard() const = 0;
    virtual void setKeyFocused(bool) { }
    /// The keyboard is here or below. True: the key is used, or the view has gone.
    virtual bool keyPressed(const KeyEvent&) { return false; }
    /// Where typed text goes while the keyboard is here or below; null: the parent decides.
    virtual TextInputClient* textInput() { return nullptr; }
    /// Where the keyboard walk begins; null: at the first view.
    virtual View* preferredKeyView() { return nullptr; }
    virtual void showContextMenu() { }
    /// By a press there, in the root view's coordinates.
    virtual void showContextMenuAt(Point) { showContextMenu(); }
};

}
