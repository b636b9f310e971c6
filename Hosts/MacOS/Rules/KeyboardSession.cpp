#include "Hosts/MacOS/Rules/KeyboardSession.h"

#include <utility>

#include "Quorvel/Platform/Surfaces.h"

namespace quorvel {

KeyboardSession::KeyboardSession(
    SystemPanel& panel, SurfaceClient& client, Queue& mainQueue, ToldEnds toldEnds)
    : m_panel(panel)
    , m_client(client)
    , m_mainQueue(mainQueue)
    , m_toldEnds(toldEnds)
{
}

void KeyboardSession::take()
{
    if (m_isHeld)
        return;
    m_isWanted = true;
    m_panel.becomeKey();
    m_confirmation = m_mainQueue.after(kPatience, [this] { confirm(); });
}

void KeyboardSession::confirm()
{
    if (!m_isWanted || !m_panel.isKey())
        return end();
    if (!std::exchange(m_isHeld, true))
        m_client.keyboardDidChange(true);
}

void KeyboardSession::release()
{
    if (!m_isWanted)
        return;
    const bool isKey = m_panel.isKey();
    end();
    if (isKey)
        m_panel.resignKey();
}

void KeyboardSession::keyDidChange(bool isKey)
{
    if (isKey)
        return;
    const bool wasHeld = m_isHeld;
    if (m_isWanted)
        end(); // which may do away with this, if the client is told
    if (!wasHeld && m_toldEnds == ToldEnds::all)
        m_client.keyboardDidChange(false);
}

void KeyboardSession::end()
{
    m_confirmation.cancel();
    m_isWanted = false;
    if (std::exchange(m_isHeld, false))
        m_client.keyboardDidChange(false);
}

}
