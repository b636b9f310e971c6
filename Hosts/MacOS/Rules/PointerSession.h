#pragma once

#include <functional>

#include "Quorvel/Platform/Dispatch.h"
#include "Quorvel/Platform/Published.h"
#include "Quorvel/Platform/Surfaces.h"

namespace quorvel {

/// Whether the pointer is over a surface. The system reports entering and leaving, but not that the
/// surface went away under the pointer, and it may report either twice.
///
/// While the pointer is there, and shortly afterwards, the program must be kept from napping: what
/// waits for a hover would come seconds late.
class PointerSession {
public:
    static constexpr Duration kAwakeAfterwards = seconds(1);
    /// Keeps the program awake until the subscription is dropped.
    using KeepAwake = std::function<Subscription()>;

    PointerSession(SurfaceClient&, Queue& mainQueue, KeepAwake);

    void entered(Point);
    void moved(const PointerEvent&);
    void exited(Point);
    /// Its panel or its space left the screen, or a menu has taken the pointer.
    void surfaceDidGo();

private:
    /// False if the pointer was not there.
    bool leave();

    SurfaceClient& m_client;
    Queue& m_mainQueue;
    KeepAwake m_keepAwake;
    bool m_isInside = false;
    Subscription m_awake;
    WorkItem m_rest;
};

}
