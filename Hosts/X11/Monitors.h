#pragma once

#include <string>
#include <vector>

#include "Hosts/Linux/DesktopLooks.h"
#include "Hosts/X11/RefreshRates.h"
#include "Quorvel/Platform/Dispatch.h"
#include "Quorvel/Platform/Geometry.h"
#include "Quorvel/Platform/Identifiers.h"
#include "Quorvel/Platform/Published.h"

namespace quorvel::xdg::x11 {

class Connection;

struct Monitor {
    DisplayNumber number{};
    std::string identifier; ///< from the EDID, else the output's name
    Rect pixels; ///< in pixels of the X screen, top-left origin
    double refreshRate = RefreshRates::kUsual; ///< pictures a second

    /// Nothing has to be laid out anew for another rate.
    friend bool operator==(const Monitor& a, const Monitor& b)
    {
        return a.number == b.number && a.identifier == b.identifier && a.pixels == b.pixels;
    }
};

/// Whether another monitor lies below. Struts count from the edge of the X screen, so a strut at
/// this monitor's bottom would cross the other one: none is possible.
bool hasMonitorBelow(const Rect& monitor, const std::vector<Monitor>& all);

/// How the model's points map to the X screen. One scale for all; the global origin is the top left
/// of the primary monitor.
struct Coordinates {
    double scale = 1; ///< pixels per point
    Rect primaryPixels;

    double primaryHeight() const { return primaryPixels.height / scale; }
    Rect toPoints(const Rect& pixels) const
    {
        return {(pixels.x - primaryPixels.x) / scale, (pixels.y - primaryPixels.y) / scale,
            pixels.width / scale, pixels.height / scale};
    }
    Rect toPixels(const Rect& points) const
    {
        return {points.x * scale + primaryPixels.x, points.y * scale + primaryPixels.y,
            points.width * scale, points.height * scale};
    }

    friend bool operator==(const Coordinates&, const Coordinates&) = default;
};

/// The monitors that RandR reports with their rates, the primary one first, and the scale of the X
/// screen (1 to 2, from the desktop's settings, else from the display's resources). Main thread.
class Monitors {
public:
    /// Changes come in series, and each would cause a complete new layout: they are followed this
    /// long after the last one, at the latest this long after the first.
    static constexpr Duration kSettleTime = seconds(0.2);
    static constexpr Duration kLongestSettleTime = seconds(1);

    Monitors(Connection&, Dispatch&, const Published<DesktopLooks>&);

    const std::vector<Monitor>& list() const { return m_list; }
    const Coordinates& coordinates() const { return m_coordinates; }
    /// How long this one shows one picture; the usual time for one that is not there.
    Duration frameInterval(DisplayNumber) const;
    /// The size of the whole X screen in pixels.
    Size screenPixels() const { return m_screenPixels; }

    /// Emitted after monitors, their order, the scale or the X screen's size changed.
    Signal<> changed;

private:
    void read();
    void settle();
    void follow();

    Connection& m_connection;
    Dispatch& m_dispatch;
    const Published<DesktopLooks>& m_looks;
    std::vector<Monitor> m_list;
    Coordinates m_coordinates;
    Size m_screenPixels;
    Subscription m_events;
    Subscription m_turnEnded;
    Subscription m_looksChanged;
    bool m_isStale = false;
    Instant m_staleSince;
    WorkItem m_settling;
};

}
