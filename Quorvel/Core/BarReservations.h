#pragma once

#include <map>
#include <set>
#include <vector>

#include "Quorvel/Platform/Displays.h"
#include "Quorvel/Skylight/ScreenLog.h"
#include "Quorvel/Skylight/SpaceWindows.h"

namespace quorvel {

struct Platform;

/// What the window server is told so that other programs' windows keep off the bars: the bar's
/// rectangle on each display, in the Dock's place, and, if asked for, the bottom edge of each
/// space. What was taken is not said twice. Main thread.
class BarReservations {
public:
    enum class EdgeReservation { off, on };

    BarReservations(const Platform&, EdgeReservation);

    /// Of the screens that show a bar, and of no other.
    void applyDockRectRegistrations(const std::vector<Screen>& covered, double barHeight);
    void clearDockRectRegistrations();
    /// Of these spaces, and of no other.
    void applyEdgeReservationsIfNeeded(const std::set<SpaceID>&, double barHeight);
    void clearSystemReservations();

private:
    struct DockRectRegistration {
        Rect screenFrame; ///< points, bottom-left origin
        Rect firstScreenFrame; ///< from which the rectangle is counted
        double barHeight = 0;

        /// Global top-left origin, as the window server takes it.
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
