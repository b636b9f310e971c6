#pragma once

#include <xcb/xcb.h>

namespace quorvel::xdg::x11 {

class Connection;

/// Whether a compositor is running now: without one, what is transparent is garbage.
bool isCompositing(Connection&);

/// Whether the window manager says that it supports this.
bool windowManagerSupports(Connection&, xcb_atom_t feature);

}
