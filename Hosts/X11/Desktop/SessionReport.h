#pragma once

#include <set>

#include <xcb/xcb.h>

#include "Quorvel/Platform/Dispatch.h"
#include "Quorvel/Platform/Published.h"

namespace quorvel::xdg::x11 {

class Mirror;
struct Client;

/// Tells whoever started the bar what of the session keeps it from being of use, on standard error
/// and once each: that no window manager runs, or that another panel has the same edge. Main
/// thread.
class SessionReport {
public:
    /// A session starts its programs in any order.
    static constexpr auto kPatience = std::chrono::seconds{2};

    SessionReport(Dispatch&, Mirror&);

private:
    void look();
    void tellOfOtherPanels();
    bool hasOurEdge(const Client&) const;

    Mirror& m_mirror;
    std::set<xcb_window_t> m_told;
    Subscription m_reservationsDidChange;
    WorkItem m_look;
};

}
