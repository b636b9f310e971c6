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

void PointerSession::exited(Point at)
{
    if (leave())
        m_client.pointerEvent({PointerAction::exited, at});
}

void PointerSession::moved(Point at, std::uint64_t modifiers)
{
    entered(at);
    m_client.pointerEvent(
        {PointerAction::moved, at, PointerButton::none, PointerButtons{}, modifiers});
}

void PointerSession::dragged(Point at, std::uint64_t modifiers)
{
    // The event does not say which buttons are down.
    m_client.pointerEvent({PointerAction::moved, at, PointerButton::none, {}, modifiers});
}

void PointerSession::pressed(std::int64_t button, Point at, std::uint64_t modifiers)
{
    if (button == kLeft)
        m_left = meaningOfPress(button, modifiers);
    tellOfButton(PointerAction::pressed, button, at, modifiers);
}

void PointerSession::released(std::int64_t button, Point at, std::uint64_t modifiers)
{
    tellOfButton(PointerAction::released, button, at, modifiers);
}

PointerButton PointerSession::meaningOfPress(std::int64_t button, std::uint64_t modifiers)
{
    switch (button) {
    case kLeft:
        return modifiers & KeyModifier::control ? PointerButton::secondary : PointerButton::primary;
    case kRight:
        return PointerButton::secondary;
    case kMiddle:
        return PointerButton::middle;
    default:
        return PointerButton::none;
    }
}

void PointerSession::tellOfButton(
    PointerAction action, std::int64_t button, Point at, std::uint64_t modifiers)
{
    const auto meaning = button == kLeft ? m_left : meaningOfPress(button, modifiers);
    if (meaning != PointerButton::none)
        m_client.pointerEvent({action, at, meaning, {}, modifiers});
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
