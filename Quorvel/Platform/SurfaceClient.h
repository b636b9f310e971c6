#pragma once

#include "Quorvel/Platform/AccessibleTree.h"
#include "Quorvel/Platform/Canvas.h"
#include "Quorvel/Platform/Geometry.h"
#include "Quorvel/Platform/KeyEvent.h"
#include "Quorvel/Platform/PointerEvent.h"
#include "Quorvel/Platform/TextInput.h"

namespace quorvel {

/// The content of a surface and the receiver of its events. Main thread; must outlive the surface.
class SurfaceClient {
public:
    virtual ~SurfaceClient() = default;

    /// Everything inside `damage` must be drawn; it starts out transparent and is clipped.
    virtual void paint(Canvas&, const Rect& damage) = 0;
    virtual void pointerEvent(const PointerEvent&) = 0;
    /// No more pointer events follow until the pointer enters again: the surface left the screen,
    /// or a menu has taken the pointer.
    virtual void pointerLost() = 0;
    virtual void scrollEvent(const ScrollEvent&) = 0;
    virtual void surfaceDidResize(Size) = 0;
    /// Returns whether a drop there would be accepted.
    virtual bool dropEvent(const DropEvent&) { return false; }
    /// Called only while the surface has the keyboard, for each key that no input method has taken.
    /// False: the key is not used.
    virtual bool keyPressed(const KeyEvent&) { return false; }
    /// The surface got the keyboard, or has lost it for any reason.
    virtual void keyboardDidChange(bool /*hasKeyboard*/) { }
    /// Where typed text goes now; null: nothing takes any. Valid until the panel is told of another
    /// one by `textInputDidChange`.
    virtual TextInputClient* textInputClient() { return nullptr; }
    /// The system refused the panel's `grabInput`, or revoked it.
    virtual void inputGrabDidEnd() { }
    /// The user wants the window closed, with its button or by the window manager. It stays until
    /// it is ordered out; destroyed it may be once this has returned.
    virtual void closeRequested() { }
    /// What a screen reader sees; null: nothing. Lives as long as the client.
    virtual AccessibleElement* accessibleRoot() { return nullptr; }
};

}
