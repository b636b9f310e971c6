#pragma once

#include <optional>
#include <vector>

#include <xcb/xcb.h>

#include "Quorvel/Platform/Identifiers.h"

namespace quorvel::xdg::x11 {

class Clients;
class Connection;
class RootState;
struct Client;

/// A window that lies above the others for a while, without the focus. Main thread.
///
/// A manager that offers to restack gives no window the focus for it. xfwm4 does not offer it, and
/// takes a window's own request to lie above for the wish to be activated, but not one to lie
/// below. So there the window is kept above the others meanwhile, which is noted on the root for
/// the next bar, should this one be killed.
class RaisedWindow {
public:
    /// The first three outlive this. Puts back what a bar has left that was killed.
    RaisedWindow(Connection&, Clients&, const RootState&, const std::vector<xcb_window_t>& left);

    /// The one before goes back to its place; absent: that is all.
    void set(std::optional<WindowID>);
    /// A window of a program that is on the screen, covered or not.
    bool isSeen(const Client&) const;

private:
    struct Raised {
        WindowID window{};
        std::vector<xcb_window_t> above; ///< the nearest first; below the root
        bool isKeptAbove = false;
    };

    void look();
    std::vector<xcb_window_t> windowsAbove(const Client&);
    void raise(const Client&, Raised&);
    void putBack(const Raised&);
    /// Null if none of them is there any more.
    const Client* nearest(const Raised&);
    void restackAbove(const Client&, const Client& sibling);
    bool canBeKeptAbove(const Client&) const;
    void keepAbove(xcb_window_t, xcb_window_t sibling);
    void stopKeepingAbove(xcb_window_t, xcb_window_t sibling);

    Connection& m_connection;
    Clients& m_clients;
    const RootState& m_root;
    std::optional<Raised> m_raised;
    // As it was before the first one was raised, and is in the end.
    std::vector<xcb_window_t> m_bottomToTop;
    bool m_managerRestacks = false;
};

}
