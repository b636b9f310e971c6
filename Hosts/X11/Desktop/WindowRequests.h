#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <utility>
#include <vector>

#include "Hosts/Linux/Desktop/DesktopModel.h"
#include "Hosts/Linux/Desktop/DesktopRequests.h"
#include "Hosts/X11/ServerTime.h"

namespace quorvel::xdg::x11 {

class Clients;
class Connection;
class Monitors;
class RootState;

/// What this program asks of the window manager. The requests of one turn are collected and sent
/// together with a fresh server time, because managers refuse old ones: the last request per window
/// wins, and raising a window makes activating its application unnecessary. Main thread.
class WindowRequests final : public DesktopRequests {
public:
    WindowRequests(Connection&, Monitors&, Clients&, const RootState&, SharedModel&);

    /// Called when activation of a window is requested or, without one, no longer wanted.
    std::function<void(std::optional<WindowID>)> onActivationAsked;

    void activate(WindowID) override;
    /// No window has the focus. If this follows an activation, it is requested once more.
    void focusWasLost();
    void activateApplication(ProcessID) override;
    void minimize(WindowID) override;
    void close(WindowID) override;
    void setSwitch(WindowID, WindowSwitch, bool isOn) override;
    void resize(WindowID, Size) override;
    void switchTo(SpaceID) override;
    void toggleShowingDesktop() override;
    void sendToWantedSpaces() override;

private:
    struct Wishes {
        std::optional<WindowID> activation;
        std::optional<ProcessID> applicationActivation;
        std::map<WindowID, bool> minimized; ///< false: the request was withdrawn
        std::map<WindowID, Size> sizes;
        std::map<std::pair<WindowID, WindowSwitch>, bool> switches;
        std::vector<WindowID> closed;
        std::optional<SpaceID> space;
        bool hasSpaces = false;
    };

    void wish();
    void send(xcb_timestamp_t);
    /// The desktops that windows have just been sent to.
    using Sent = std::map<WindowID, std::uint32_t>;
    void sendActivation(xcb_timestamp_t, WindowID, const Sent&);
    void sendSize(WindowID, Size);
    void sendSwitch(WindowID, WindowSwitch, bool isOn);
    void sendSwitch(xcb_timestamp_t, SpaceID);
    Sent sendSpaces();
    std::optional<WindowID> windowToActivate(ProcessID) const;

    Connection& m_connection;
    Monitors& m_monitors;
    Clients& m_clients;
    const RootState& m_root;
    struct AskedDesktop {
        bool isShowing = false;
        unsigned reads = 0; ///< that said so, at that time
    };
    std::optional<AskedDesktop> m_askedDesktop;
    SharedModel& m_model;
    /// A window of another space that was activated, and when.
    struct FarActivation {
        WindowID window;
        xcb_timestamp_t time;
    };

    Wishes m_wishes;
    std::optional<FarActivation> m_farActivation;
    bool m_isAsking = false;
    ServerTime m_time;
};

}
