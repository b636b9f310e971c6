#pragma once

#include <cstdint>
#include <string>

#include "Quorvel/Platform/Geometry.h"
#include "Quorvel/Platform/PointerEvent.h"

namespace quorvel {

class DragSource;

/// A button going down.
struct PointerPress {
    PointerButton button = PointerButton::primary;
    Point pointer; ///< in the root view's coordinates
    std::uint64_t modifiers = 0; ///< of `KeyModifier`
};

/// The pointer with a button down.
struct DragMove {
    Point translation; ///< from where the button went down
    Point pointer; ///< in the root view's coordinates
};

/// What the pointer does to a view.
///
/// The pointer goes to the deepest view under it that `takesPointer()`. A press is followed by any
/// number of `dragged` and then exactly one `released` or `pressCancelled` on the same view,
/// wherever the pointer is by then. A view with a drag source hears of no `dragged`: once the
/// source takes the press for a drag, the press is cancelled for the view. Main thread.
class PointerTarget {
public:
    virtual ~PointerTarget() = default;

    virtual bool takesPointer() const { return false; }
    /// The pointer entered the view or a descendant of it.
    virtual void pointerEntered() { }
    virtual void pointerExited() { }
    /// Never the secondary button, which opens the context menu.
    virtual void pointerPressed(const PointerPress&) { }
    virtual void dragged(const DragMove&) { }
    virtual void released(PointerButton, bool /*isInside*/) { }
    virtual void pressCancelled() { }
    /// Hears of the view's presses too; null if it is not dragged about.
    virtual DragSource* dragSource() { return nullptr; }
    /// What a pointer that rests on it is told; empty: nothing.
    virtual std::string tooltip() const { return {}; }
    /// Of a view under the pointer, the deepest first. True: it is used.
    virtual bool scrolled(const ScrollEvent&) { return false; }
};

}
