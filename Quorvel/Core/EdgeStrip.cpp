#include "Quorvel/Core/EdgeStrip.h"

#include <utility>

namespace quorvel {

EdgeStrip::EdgeStrip(
    Surfaces& surfaces, DisplayNumber display, std::function<void(EdgeContact)> handler)
    : m_handler(std::move(handler))
    , m_surface(
          surfaces.createPanel({.display = display, .title = {}, .kind = PanelKind::edge}, *this))
{
}

void EdgeStrip::setFrame(const Rect& frame)
{
    if (frame == m_surface->frame())
        return;
    m_surface->setFrame(frame);
    m_surface->orderFront();
}

void EdgeStrip::pointerEvent(const PointerEvent& event)
{
    switch (event.action) {
    case PointerAction::entered:
        return m_handler(EdgeContact::came);
    case PointerAction::exited:
        return m_handler(EdgeContact::left);
    case PointerAction::pressed:
        return m_handler(EdgeContact::pressed);
    case PointerAction::moved:
    case PointerAction::released:
        break;
    }
}

bool EdgeStrip::dropEvent(const DropEvent& event)
{
    if (event.action == DropAction::entered)
        m_handler(EdgeContact::came);
    else if (event.action == DropAction::exited)
        m_handler(EdgeContact::left);
    return false;
}

}
