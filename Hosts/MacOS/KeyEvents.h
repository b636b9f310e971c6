#pragma once

#include <cstdint>

#include "Hosts/MacOS/Cocoa.h"
#include "Quorvel/Platform/KeyEvent.h"

namespace quorvel {

/// Of `KeyModifier`; of any event.
std::uint64_t modifiersOf(NSEvent*);
/// Of an event of kind key down.
KeyEvent keyEventOf(NSEvent*);
/// What a menu calls the key; empty for keys that it has no name for here.
NSString* keyEquivalentOf(KeyCode);

}
