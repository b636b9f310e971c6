#pragma once

#include <memory>
#include <string>

#include <xcb/xcb.h>

#include "Quorvel/Platform/Published.h"

namespace quorvel::xdg::x11 {

class Connection;

/// Says on the display itself that its bar is there, to whoever opens the same display with other
/// folders or as another user: this process owns a selection, as window managers do (ICCCM 2.8).
/// Main thread.
class DisplayClaim {
public:
    /// Null, with a one-line problem, when another bar is there and is not to be replaced. One that
    /// is to be replaced is told by the loss of the selection, and cut off if it does not go.
    static std::unique_ptr<DisplayClaim> take(Connection&, bool replace, std::string& problem);

    /// Another bar has taken over.
    Signal<> lost;

private:
    DisplayClaim(Connection&, xcb_window_t);

    Subscription m_events;
};

}
