#pragma once

#include "Quorvel/Platform/Identifiers.h"

namespace quorvel {

/// One window shown as if it were alone, while the user looks at its picture. No window is
/// restored, and none gets the focus. Main thread.
class Peeking {
public:
    virtual ~Peeking() = default;

    /// The others on the spaces that are shown fade; where they cannot, the window comes to the
    /// front. Takes the place of the one before; called again, it includes what is new. False: this
    /// window cannot be seen so, being minimised for example, and no other one is either now.
    virtual bool showAlone(WindowID) = 0;
    /// All windows look, and lie, as their programs and the user have it.
    virtual void showAll() = 0;
};

}
