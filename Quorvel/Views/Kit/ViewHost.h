#pragma once

#include <cstdint>

#include "Quorvel/Platform/Surfaces.h"

namespace quorvel {

class View;

/// The surface at the root of a view tree.
class ViewHost {
public:
    virtual ~ViewHost() = default;

    /// In the root view's coordinates.
    virtual void viewNeedsPaint(const Rect&) = 0;
    /// The view leaves the tree or is destroyed: nobody may refer to it any longer.
    virtual void viewWillVanish(const View&) = 0;
    /// Called by a view that has laid out its children again: the pointer may be on another one.
    virtual void viewsDidMove() = 0;
    /// Whether the view has the keyboard now.
    virtual bool viewWantsKeyboard(View&) = 0;
    /// The caret of the field that takes typed text moved.
    virtual void viewTextInputDidChange() { }
    /// The keys that were held when a menu was asked for which a view is opening now, of
    /// `KeyModifier`; 0 at any other time.
    virtual std::uint64_t menuModifiers() const { return 0; }
    /// Called by a view that opened a menu. Escaped: the user is where they were before.
    virtual void menuDidClose(MenuEnding) = 0;
};

}
