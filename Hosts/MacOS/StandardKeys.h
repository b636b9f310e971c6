#pragma once

#include "Hosts/MacOS/Cocoa.h"

namespace quorvel {

/// The standard keys of a window of this program, which has no menu bar that would bring them:
/// Command-W calls `close`, which is nil for a window that the user cannot close; the editing keys
/// go to whatever has the keyboard in it. False if the key is none of them, or nobody takes it.
bool handleStandardKeyEquivalent(NSEvent*, NSWindow*, void (^close)(void));

}
