#pragma once

#include <map>
#include <set>
#include <vector>

#include "Quorvel/Platform/Displays.h"
#include "Quorvel/Skylight/ScreenLog.h"
#include "Quorvel/Skylight/SpaceWindows.h"

namespace quorvel {

struct Platform;

/// What the window server is told so that other programs' windows stay clear of the bars: the bar's
/// rectangle on each display, in place of the Dock's, and, if the user wants it, the bottom edge of
/// each space. A reservation in effect is not sent twice. Main thread.
class BarReservations {
public:
    enum class EdgeReservation { off, on };

    BarReservations(const Platform&, EdgeReservation);

    /// For the screens that show a bar, and no others.
    void applyDockRectRegistrations(const std::vector<Screen>& covered, double barHeight);
    void clearDockRectRegistrations();
    /// Whether a strip of this height at the screen's bottom edge may be the program's own.
    bool hasReserved(const Screen&, double height) const;
    /// For these spaces, and no others.
    void applyEdgeReservationsIfNeeded(const std::set<SpaceID>&, double barHeight);
    void clearSystemReservations();

private:
    struct DockRectRegistration {
        Rect screenFrame; ///< points, bottom-left origin
        Rect firstScreenFrame; ///< the rectangle's origin is its top left
        double barHeight = 0;

        /// Global top-left origin, as the window server expects it.
        Rect rectangle() const;
        friend bool operator==(const DockRectRegistration&, const DockRectRegistration&) = default;
    };

    Reservations& m_windowReservations;
    Displays& m_displays;
    SpaceWindows m_spaceWindows;
    ScreenLog m_screenLog;
    EdgeReservation m_edgeReservation;
    std::map<DisplayNumber, DockRectRegistration> m_appliedDockRectRegistrations;
    std::map<SpaceID, double> m_appliedEdgeReservations;
};

}
