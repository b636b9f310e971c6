#pragma once

#include "Quorvel/Platform/Identifiers.h"

namespace quorvel {

/// One window shown as if it were alone, while the user looks at its picture. No window is
/// restored, and none gets the focus. Main thread.
class Peeking {
public:
    virtual ~Peeking() = default;

    /// The others on the spaces that are shown are to fade; where they cannot, the window comes to
    /// the front at once. Takes the place of the one before; called again, it includes what is new.
    /// False: this window cannot be seen so, being minimised for example, and no other one is to be
    /// either now.
    virtual bool showAlone(WindowID) = 0;
    /// All windows are to look, and lie, as their programs and the user have it.
    virtual void showAll() = 0;
    /// Brings what is to fade, and what was faded, this much nearer to what it is to be: of the
    /// whole way, from 0 to 1. True: some of it is still on its way.
    virtual bool fade(double by) = 0;
};

}
