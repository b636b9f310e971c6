#pragma once

#include "Quorvel/Platform/Displays.h"
#include "Quorvel/Platform/DockControl.h"

namespace quorvel {

class BarReservations;

/// The strip along a screen's bottom edge that the system's Dock keeps for itself: bars stand on
/// top of it. Main thread.
class DockRoom {
public:
    /// Both outlive it; `dock` is null where there is none.
    DockRoom(const DockControl* dock, const BarReservations& reservations)
        : m_dock(dock)
        , m_reservations(reservations)
    {
    }

    /// Its height in points; 0 unless the Dock is there and is always to be seen.
    double on(const Screen&) const;

private:
    const DockControl* m_dock;
    const BarReservations& m_reservations;
};

}
