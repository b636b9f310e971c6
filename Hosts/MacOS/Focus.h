#pragma once

namespace quorvel {

/// An ordinary window of ours has gone. The program has no Dock icon and no menu bar, so without
/// such a window it must not stay the active one: the system goes back to the program before it.
/// Main thread.
void handBackFocus();

}
