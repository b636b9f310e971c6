#include "Quorvel/Core/BarReservations.h"

#include <algorithm>
#include <cmath>

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
    std::erase_if(m_appliedDockRectRegistrations, [&](auto& applied) {
        if (wanted.contains(applied.first))
            return false;
        m_windowReservations.clearDockRectangle(applied.first);
        return true;
    });
    for (auto& [display, registration] : wanted) {
        auto applied = m_appliedDockRectRegistrations.find(display);
        if (applied != m_appliedDockRectRegistrations.end() && applied->second == registration)
            continue;
        if (m_windowReservations.setDockRectangle({display, registration.rectangle()}))
            m_appliedDockRectRegistrations.insert_or_assign(display, registration);
    }
}

bool BarReservations::hasReserved(const Screen& screen, double height) const
{
    auto isAbout = [height](double reserved) { return std::abs(reserved - height) < 1; };
    auto applied = screen.number ? m_appliedDockRectRegistrations.find(*screen.number)
                                 : m_appliedDockRectRegistrations.end();
    return (applied != m_appliedDockRectRegistrations.end() && isAbout(applied->second.barHeight))
        || std::ranges::any_of(
            m_appliedEdgeReservations, [&](auto& edge) { return isAbout(edge.second); });
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
    std::erase_if(m_appliedEdgeReservations, [&](auto& applied) {
        if (wanted.contains(applied.first))
            return false;
        m_spaceWindows.setBottomEdgeReservation(applied.first, 0, m_screenLog);
        return true;
    });
    for (auto& [space, height] : wanted) {
        auto applied = m_appliedEdgeReservations.find(space);
        if (applied != m_appliedEdgeReservations.end() && applied->second == height)
            continue;
        if (m_spaceWindows.setBottomEdgeReservation(space, height, m_screenLog))
            m_appliedEdgeReservations.insert_or_assign(space, height);
    }
}

void BarReservations::clearSystemReservations()
{
    applyEdgeReservationsIfNeeded({}, 0);
}

}
