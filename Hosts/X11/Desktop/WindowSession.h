#pragma once

#include <string>

namespace quorvel::xdg::x11 {

class Connection;
struct RootNotes;

/// Names the time for which the X server's window numbers hold: from its start or last reset to the
/// next. Nothing in the protocol tells that, so the first bar that asks leaves a random name on the
/// root window, which the server forgets together with its windows.
std::string windowSession(Connection&, const RootNotes&);

}
