#include "Hosts/MacOS/Rules/PanelPlace.h"

#include <algorithm>

#include "Hosts/MacOS/System/MacWindowServer.h"

namespace quorvel {

PanelPlace::PanelPlace(
    const MacWindowServer& windowServer, SystemPanel& panel, std::optional<SpaceID> space)
    : m_windowServer(windowServer)
    , m_panel(panel)
    , m_space(space)
{
}

void PanelPlace::orderFront()
{
    m_isWanted = true;
    if (!isSpaceActive())
        return;
    m_panel.orderIn();
    m_isIn = true;
}

void PanelPlace::orderOut()
{
    m_isWanted = false;
    m_isIn = false;
    m_panel.orderOut();
}

bool PanelPlace::orderFrontForKey()
{
    orderFront();
    if (m_isIn)
        return true;
    m_panel.setUnseen(true);
    m_panel.orderIn();
    m_isIn = move();
    if (!m_isIn)
        m_panel.orderOut();
    m_panel.setUnseen(false);
    return m_isIn;
}

void PanelPlace::activeSpaceDidChange()
{
    if (!m_isWanted || !m_space)
        return;
    // The user may have changed the space just when it was ordered in.
    if (m_isIn && isElsewhere() && !move()) {
        m_panel.orderOut();
        m_isIn = false;
    }
    if (!m_isIn)
        orderFront();
}

bool PanelPlace::isSpaceActive() const
{
    if (!m_space)
        return true;
    const auto current = m_windowServer.currentSpaces();
    // A bar on the wrong space is better than none.
    return !current || std::ranges::find(*current, *m_space) != current->end();
}

bool PanelPlace::isElsewhere() const
{
    const auto number = m_panel.number();
    const auto spaces = number ? m_windowServer.spacesOfOwnWindow(*number) : std::nullopt;
    return spaces && std::ranges::find(*spaces, *m_space) == spaces->end();
}

bool PanelPlace::move()
{
    const auto number = m_panel.number();
    return number && m_windowServer.moveOwnWindow(*number, *m_space);
}

}
