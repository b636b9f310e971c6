#pragma once

#include <memory>
#include <string>

#include <xcb/xcb.h>

#include "Quorvel/Platform/Published.h"

namespace quorvel::xdg::x11 {

class Connection;

/// Marks the display itself as having a bar, for processes that open the same display with other
/// folders or as another user: this process owns a selection, as window managers do (ICCCM 2.8).
/// Main thread.
class DisplayClaim {
public:
    /// Null, with a one-line problem, when another bar is present and is not to be replaced. One
    /// that is to be replaced learns it by losing the selection, and is disconnected if it does not
    /// go.
    static std::unique_ptr<DisplayClaim> take(Connection&, bool replace, std::string& problem);

    /// Another bar has taken over.
    Signal<> lost;

private:
    DisplayClaim(Connection&, xcb_window_t);

    Subscription m_events;
};

}
