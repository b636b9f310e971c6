#pragma once

#include <string>
#include <vector>

#include <xcb/xcb.h>

#include "Hosts/X11/Desktop/Properties.h"

namespace quorvel::xdg::x11 {

class Connection;

/// What bars leave on the root window for the next one, read in one round trip.
struct RootNotes {
    std::string session; ///< see `windowSession`; empty if there is none
    NotedOpacities faded; ///< of windows that a bar which was killed has faded
    std::vector<xcb_window_t>
        raised; ///< the one that it has raised, and the one below which it was

    static RootNotes read(Connection&);
};

}
