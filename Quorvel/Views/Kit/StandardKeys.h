#pragma once

#include "Quorvel/Platform/KeyEvent.h"

namespace quorvel {

/// Whether the key closes a window of the program: Control-W, by the letter or, where the layout
/// has no Latin letters, by the place of the key. Control plays the part of the Mac's Command; on a
/// Mac the host hears of Command-W first.
bool closesWindow(const KeyEvent&);

}
