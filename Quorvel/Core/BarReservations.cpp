#include "Quorvel/Core/BarReservations.h"

#include "Quorvel/Platform/Platform.h"

namespace quorvel {

BarReservations::BarReservations(const Platform& platform, EdgeReservation edgeReservation)
    : m_windowReservations(platform.windowServer)
    , m_displays(platform.displays)
    , m_spaceWindows(platform.windowServer, platform.displays)
    , m_screenLog(platform.dispatch, platform.displays, platform.trace)
    , m_edgeReservation(edgeReservation)
{
}

Rect BarReservations::DockRectRegistration::rectangle() const
{
    Rect bar{screenFrame.x, screenFrame.y, screenFrame.width, barHeight};
    return bar.flipped(firstScreenFrame.height);
}

void BarReservations::applyDockRectRegistrations(
    const std::vector<Screen>& covered, double barHeight)
{
    auto screens = m_displays.screens();
    std::map<DisplayNumber, DockRectRegistration> wanted;
    for (auto& screen : covered) {
        if (screen.number && !screens.empty())
            wanted[*screen.number] = {screen.frame, screens.front().frame, barHeight};
    }
    for (auto& [display, registration] : m_appliedDockRectRegistrations) {
        if (!wanted.contains(display))
            m_windowReservations.clearDockRectangle(display);
    }
    for (auto& [display, registration] : wanted) {
        auto applied = m_appliedDockRectRegistrations.find(display);
        if (applied == m_appliedDockRectRegistrations.end() || applied->second != registration)
            m_windowReservations.setDockRectangle({display, registration.rectangle()});
    }
    m_appliedDockRectRegistrations = std::move(wanted);
}

void BarReservations::clearDockRectRegistrations()
{
    applyDockRectRegistrations({}, 0);
}

void BarReservations::applyEdgeReservationsIfNeeded(
    const std::set<SpaceID>& spaces, double barHeight)
{
    if (m_edgeReservation == EdgeReservation::off)
        return;
    std::map<SpaceID, double> wanted;
    for (auto space : spaces)
        wanted[space] = barHeight;
    for (auto& [space, height] : m_appliedEdgeReservations) {
        if (!wanted.contains(space))
            m_spaceWindows.setBottomEdgeReservation(space, 0, m_screenLog);
    }
    for (auto& [space, height] : wanted) {
        auto applied = m_appliedEdgeReservations.find(space);
        if (applied == m_appliedEdgeReservations.end() || applied->second != height)
            m_spaceWindows.setBottomEdgeReservation(space, height, m_screenLog);
    }
    m_appliedEdgeReservations = std::move(wanted);
}

void BarReservations::clearSystemReservations()
{
    applyEdgeReservationsIfNeeded({}, 0);
}

}
