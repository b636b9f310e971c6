#include "Quorvel/Core/DockRoom.h"

#include <algorithm>

#include "Quorvel/Core/BarReservations.h"

namespace quorvel {

namespace {

/// Of the screen's height: what keeps more is no Dock.
constexpr double kMostOfScreen = 0.5;

}

double DockRoom::on(const Screen& screen) const
{
    if (!m_dock || m_dock->isAutoHideEnabled() || !m_dock->isAtBottom()
        || screen.visibleFrame.isEmpty())
        return 0;
    double room = screen.visibleFrame.y - screen.frame.y;
    // A strip that the program itself has asked for looks the same.
    if (m_reservations.hasReserved(screen, room))
        return 0;
    return room < kMostOfScreen * screen.frame.height ? std::max(0.0, room) : 0;
}

}
