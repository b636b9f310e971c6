#pragma once

#include "Hosts/MacOS/Cocoa.h"

namespace quorvel {

/// The standard keys of a window of this program, which has no menu bar that would bring them:
/// Command-W closes the window, the editing keys go to whatever has the keyboard in it. False if
/// the key is none of them, or nobody takes it.
bool handleStandardKeyEquivalent(NSEvent*, NSWindow*);

}
