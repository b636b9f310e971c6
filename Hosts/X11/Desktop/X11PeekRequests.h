#pragma once

#include "Hosts/Linux/Desktop/PeekRequests.h"
#include "Hosts/X11/Desktop/FadedWindows.h"
#include "Hosts/X11/Desktop/RaisedWindow.h"

namespace quorvel::xdg::x11 {

/// Shows a window alone by what a compositor or the window manager offers. Main thread.
class X11PeekRequests final : public PeekRequests {
public:
    /// The first four outlive this.
    X11PeekRequests(Connection&, FadedWindows&, Clients&, const RootState&,
        const std::vector<xcb_window_t>& leftRaised);

    bool canFade() const override;
    void setFaded(const std::vector<WindowID>&) override;
    bool fade(double by) override { return m_faded.fade(by); }
    void setRaised(std::optional<WindowID> window) override { m_raised.set(window); }

private:
    Connection& m_connection;
    FadedWindows& m_faded;
    Clients& m_clients;
    RaisedWindow m_raised;
};

}
