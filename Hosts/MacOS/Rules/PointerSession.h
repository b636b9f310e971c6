#pragma once

#include <cstdint>
#include <functional>

#include "Quorvel/Platform/Dispatch.h"
#include "Quorvel/Platform/Published.h"
#include "Quorvel/Platform/Surfaces.h"

namespace quorvel {

/// Whether the pointer is over a surface, and what its buttons mean there. The system reports
/// entering and leaving, but not that the surface went away under the pointer, and it may report
/// either twice.
///
/// While the pointer is there, and shortly afterwards, the program must be kept from napping: what
/// waits for a hover would come seconds late.
class PointerSession {
public:
    static constexpr Duration kAwakeAfterwards = seconds(1);
    /// As the system numbers them; others do nothing.
    static constexpr std::int64_t kLeft = 0, kRight = 1, kMiddle = 2;
    /// What a button that goes down means; modifiers are of `KeyModifier`. Control and the left one
    /// have meant the other one since mice had one.
    static PointerButton meaningOfPress(std::int64_t button, std::uint64_t modifiers);

    /// Keeps the program awake until the subscription is dropped.
    using KeepAwake = std::function<Subscription()>;

    PointerSession(SurfaceClient&, Queue& mainQueue, KeepAwake);

    void entered(Point);
    void exited(Point);
    /// With no button down; modifiers are of `KeyModifier`.
    void moved(Point, std::uint64_t modifiers);
    /// With some button down. Whoever drags out of the surface is still told, but is not there.
    void dragged(Point, std::uint64_t modifiers);
    /// Buttons as the system numbers them. What the left one meant when it went down holds until it
    /// is let go, whatever is held by then.
    void pressed(std::int64_t button, Point, std::uint64_t modifiers);
    void released(std::int64_t button, Point, std::uint64_t modifiers);
    /// Its panel or its space left the screen, or a menu has taken the pointer.
    void surfaceDidGo();

private:
    /// False if the pointer was not there.
    bool leave();
    void tellOfButton(PointerAction, std::int64_t button, Point, std::uint64_t modifiers);

    SurfaceClient& m_client;
    Queue& m_mainQueue;
    KeepAwake m_keepAwake;
    bool m_isInside = false;
    PointerButton m_left = PointerButton::none; ///< what the left button means until let go
    Subscription m_awake;
    WorkItem m_rest;
};

}
