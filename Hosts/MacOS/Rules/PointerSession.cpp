#include "Hosts/MacOS/Rules/PointerSession.h"

#include <utility>

namespace quorvel {

PointerSession::PointerSession(SurfaceClient& client, Queue& mainQueue, KeepAwake keepAwake)
    : m_client(client)
    , m_mainQueue(mainQueue)
    , m_keepAwake(std::move(keepAwake))
{
}

void PointerSession::entered(Point at)
{
    if (std::exchange(m_isInside, true))
        return;
    // The new one first: the system is not told of an end in between.
    m_awake = m_keepAwake();
    m_rest.cancel();
    m_client.pointerEvent({PointerAction::entered, at});
}

void PointerSession::moved(const PointerEvent& event)
{
    // Whoever drags out of it is still told, but is not there.
    if (event.held)
        entered(event.location);
    m_client.pointerEvent(event);
}

void PointerSession::exited(Point at)
{
    if (leave())
        m_client.pointerEvent({PointerAction::exited, at});
}

bool PointerSession::leave()
{
    if (!std::exchange(m_isInside, false))
        return false;
    m_rest = m_mainQueue.after(kAwakeAfterwards, [this] { m_awake = {}; });
    return true;
}

void PointerSession::surfaceDidGo()
{
    leave();
    m_client.pointerLost();
}

}
