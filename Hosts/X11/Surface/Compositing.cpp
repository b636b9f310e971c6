#include "Hosts/X11/Surface/Compositing.h"

#include <algorithm>
#include <span>
#include <utility>

#include "Hosts/X11/Connection.h"
#include "Hosts/X11/Desktop/Properties.h"
#include "Hosts/X11/EventWindow.h"
#include "Hosts/X11/Reply.h"
#include "Hosts/X11/SelectionEvents.h"

namespace quorvel::xdg::x11 {

Compositing::Compositing(Connection& connection)
    : m_connection(connection)
    , m_selectionEvent(selectSelectionEvents(connection, connection.atoms().netWmCmS0))
{
    connection.addEventMask(connection.root(), XCB_EVENT_MASK_PROPERTY_CHANGE);
    m_events = connection.event.subscribe([this](auto* event) { handle(event); });
    m_turnEnded = connection.turnEnded.subscribe([this] {
        if (std::exchange(m_isStale, false))
            read();
    });
    read();
}

void Compositing::refresh()
{
    if (m_selectionEvent == 0)
        read();
}

void Compositing::handle(const xcb_generic_event_t* event)
{
    auto& atoms = m_connection.atoms();
    if ((event->response_type & 0x7f) == XCB_PROPERTY_NOTIFY) {
        auto& change = as<xcb_property_notify_event_t>(event);
        m_isStale |= change.window == m_connection.root() && change.atom == atoms.netSupported;
    } else {
        m_isStale |= selectionOf(event, m_selectionEvent) == atoms.netWmCmS0;
    }
}

void Compositing::read()
{
    const bool isActive = hasCompositor();
    const bool canBlur = isActive && managerSupports(m_connection.atoms().kdeBlurBehind);
    m_isActive.set(isActive);
    m_canBlur.set(canBlur);
}

bool Compositing::hasCompositor() const
{
    auto* raw = m_connection.raw();
    auto reply = owned(xcb_get_selection_owner_reply(
        raw, xcb_get_selection_owner(raw, m_connection.atoms().netWmCmS0), nullptr));
    return reply && reply->owner != XCB_WINDOW_NONE;
}

bool Compositing::managerSupports(xcb_atom_t feature) const
{
    auto* raw = m_connection.raw();
    auto reply = owned(xcb_get_property_reply(raw,
        xcb_get_property(raw, 0, m_connection.root(), m_connection.atoms().netSupported,
            XCB_ATOM_ATOM, 0, limits::features),
        nullptr));
    if (!reply || reply->format != 32)
        return false;
    std::span atoms{static_cast<const xcb_atom_t*>(xcb_get_property_value(reply.get())),
        static_cast<std::size_t>(reply->value_len)};
    return std::ranges::find(atoms, feature) != atoms.end();
}

}
