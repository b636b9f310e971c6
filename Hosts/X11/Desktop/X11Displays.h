#pragma once

#include <mutex>

#include "Hosts/X11/Desktop/PointerQuery.h"
#include "Hosts/X11/Monitors.h"
#include "Quorvel/Platform/Displays.h"

namespace quorvel::xdg::x11 {

class Mirror;

/// The monitors as screens. Data for other threads is guarded by a lock.
class X11Displays final : public Displays {
public:
    X11Displays(Connection&, Monitors&, Mirror&);

    std::vector<Screen> screens() const override;
    DisplayNumber mainDisplay() const override;
    std::vector<DisplayNumber> activeDisplays(std::size_t limit) const override;
    std::optional<std::string> identifier(DisplayNumber) const override;
    Point pointerLocation() const override;
    std::optional<DisplayNumber> displayAt(Point globalTopLeft) const override;
    Rect toNative(const Rect& globalTopLeft) const override;

private:
    struct Layout {
        std::vector<Monitor> monitors;
        Coordinates coordinates;
        std::vector<Screen> screens;
    };

    void update();
    Layout makeLayout();
    Rect visiblePixels(const Rect& monitor);

    mutable PointerQuery m_pointer;
    Monitors& m_monitors;
    Mirror& m_mirror;
    mutable std::mutex m_mutex;
    Layout m_layout;
    Subscription m_monitorsChanged;
    Subscription m_reservationsChanged;
};

}
