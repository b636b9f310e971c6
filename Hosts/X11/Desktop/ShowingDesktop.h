#pragma once

#include <optional>

#include "Hosts/X11/Desktop/Client.h"

namespace quorvel::xdg::x11 {

class Clients;

/// Tells minimised windows from those that are hidden because the desktop is shown. Managers then
/// mark all windows as hidden, some before they say that the desktop is shown: so a window is taken
/// as minimised only when it has been hidden for a moment without that.
class ShowingDesktop {
public:
    static constexpr auto kSettles = std::chrono::milliseconds{50};

    /// Call when `isShowing` may have changed, before the clients are updated.
    void update(bool isShowing, Clients&, Instant now);
    /// Works out whether the client is minimised.
    void update(Client&, Instant now) const;

private:
    bool m_isShowing = false;
};

}
