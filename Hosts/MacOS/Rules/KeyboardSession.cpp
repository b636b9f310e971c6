#include "Hosts/MacOS/Rules/KeyboardSession.h"

#include <utility>

#include "Hosts/MacOS/Rules/PanelPlace.h"
#include "Quorvel/Platform/Surfaces.h"

namespace quorvel {

KeyboardSession::KeyboardSession(
    SystemPanel& panel, SurfaceClient& client, Queue& mainQueue, PanelTraits::Keys keys)
    : m_panel(panel)
    , m_client(client)
    , m_mainQueue(mainQueue)
    , m_keys(keys)
{
}

bool KeyboardSession::take()
{
    if (!m_panel.isVisible())
        return false;
    request();
    return true;
}

void KeyboardSession::request()
{
    if (!m_isHeld) {
        m_isWanted = true;
        m_panel.becomeKey();
        m_confirmation = m_mainQueue.after(kPatience, [this] { confirm(); });
    }
    m_panel.directKeysToContent();
}

void KeyboardSession::makeKeyAndOrderFront(PanelPlace& place)
{
    if (m_keys == Keys::whenKey)
        m_panel.activateProgram();
    if (m_keys == Keys::onRequest) {
        if (place.orderFrontForKey())
            m_panel.becomeKey();
        return;
    }
    place.orderFront();
    take();
}

void KeyboardSession::panelDidGo()
{
    if (m_keys == Keys::whenKey)
        m_panel.handBackActivation();
}

bool KeyboardSession::mayBecomeKey() const
{
    return m_keys == Keys::whenKey || m_canBecomeKey || m_isWanted;
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
    m_panel.setClientSeesKeysFirst(isKey && m_keys == Keys::fromTheStart);
    if (isKey) {
        if (m_keys == Keys::whenKey && !m_isWanted)
            request(); // the user has turned to it
        return;
    }
    const bool wasHeld = m_isHeld;
    if (m_isWanted)
        end(); // which may do away with this, if the client is told
    if (!wasHeld && m_keys == Keys::fromTheStart)
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
