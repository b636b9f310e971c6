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
    m_last = at;
    if (std::exchange(m_isInside, true))
        return;
    // The new one first: the system is not told of an end in between.
    m_awake = m_keepAwake();
    m_rest.cancel();
    m_client.pointerEvent({PointerAction::entered, at, PointerButton::none});
}

void PointerSession::moved(Point at, PointerButton held)
{
    // Whoever drags out of it is still told, but is not there.
    if (held == PointerButton::none)
        entered(at);
    m_last = at;
    m_client.pointerEvent({PointerAction::moved, at, held});
}

void PointerSession::exited(Point at)
{
    m_last = at;
    if (!std::exchange(m_isInside, false))
        return;
    m_rest = m_mainQueue.after(kAwakeAfterwards, [this] { m_awake = {}; });
    m_client.pointerEvent({PointerAction::exited, at, PointerButton::none});
}

void PointerSession::surfaceDidGo()
{
    exited(m_last);
}

}
