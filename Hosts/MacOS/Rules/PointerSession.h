#pragma once

#include <functional>

#include "Quorvel/Platform/Dispatch.h"
#include "Quorvel/Platform/Published.h"
#include "Quorvel/Platform/Surfaces.h"

namespace quorvel {

/// Whether the pointer is over a surface. The system says when it comes and goes, but not when the
/// surface goes from under it, and it may say either twice.
///
/// While the pointer is there, and shortly afterwards, the system must not let the program nap:
/// what a hover waits for would come seconds late.
class PointerSession {
public:
    static constexpr Duration kAwakeAfterwards = seconds(1);
    /// Keeps the program awake until the subscription is dropped.
    using KeepAwake = std::function<Subscription()>;

    PointerSession(SurfaceClient&, Queue& mainQueue, KeepAwake);

    void entered(Point);
    void moved(const PointerEvent&);
    void exited(Point);
    /// Its panel went off the screen, or the space that it is on did, or a menu has the pointer.
    void surfaceDidGo();

private:
    /// False if it was not there.
    bool leave();

    SurfaceClient& m_client;
    Queue& m_mainQueue;
    KeepAwake m_keepAwake;
    bool m_isInside = false;
    Subscription m_awake;
    WorkItem m_rest;
};

}
