#include "Hosts/X11/XSettings.h"

#include <utility>

#include "Hosts/X11/Connection.h"
#include "Hosts/X11/EventWindow.h"
#include "Hosts/X11/Reply.h"
#include "Hosts/X11/XSettingsData.h"

namespace quorvel::xdg::x11 {

namespace {

constexpr std::uint32_t kMostWords = 1 << 16;

}

XSettings::XSettings(Connection& connection) : m_connection(connection)
{
    // A new daemon tells it to the root.
    connection.addEventMask(connection.root(), XCB_EVENT_MASK_STRUCTURE_NOTIFY);
    m_events = connection.event.subscribe([this](auto* event) { handle(event); });
    m_turnEnded = connection.turnEnded.subscribe([this] {
        if (std::exchange(m_isStale, false))
            read();
    });
    read();
}

void XSettings::handle(const xcb_generic_event_t* event)
{
    auto& atoms = m_connection.atoms();
    switch (event->response_type & 0x7f) {
    case XCB_CLIENT_MESSAGE: {
        auto& message = as<xcb_client_message_event_t>(event);
        m_isStale |= message.type == atoms.manager && message.format == 32
            && message.data.data32[1] == atoms.xsettingsS0;
        break;
    }
    case XCB_PROPERTY_NOTIFY: {
        auto& change = as<xcb_property_notify_event_t>(event);
        m_isStale |= change.window == m_owner && change.atom == atoms.xsettings;
        break;
    }
    case XCB_DESTROY_NOTIFY:
        if (m_owner != XCB_WINDOW_NONE && as<xcb_destroy_notify_event_t>(event).window == m_owner) {
            m_connection.forgetWindow(std::exchange(m_owner, XCB_WINDOW_NONE));
            m_isStale = true; // the next one may have come before
        }
        break;
    default:
        break;
    }
}

bool XSettings::findOwner()
{
    auto* raw = m_connection.raw();
    auto reply = owned(xcb_get_selection_owner_reply(
        raw, xcb_get_selection_owner(raw, m_connection.atoms().xsettingsS0), nullptr));
    m_owner = reply ? reply->owner : xcb_window_t{XCB_WINDOW_NONE};
    return m_owner != XCB_WINDOW_NONE;
}

void XSettings::read()
{
    if (!findOwner())
        return;
    auto* raw = m_connection.raw();
    auto& atoms = m_connection.atoms();
    m_connection.addEventMask(
        m_owner, XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY);
    auto cookie
        = xcb_get_property(raw, 0, m_owner, atoms.xsettings, atoms.xsettings, 0, kMostWords);
    auto reply = owned(xcb_get_property_reply(raw, cookie, nullptr));
    std::optional<DesktopLooks> looks;
    if (reply && reply->format == 8) {
        auto* bytes = static_cast<const std::byte*>(xcb_get_property_value(reply.get()));
        looks = decodeXSettings(
            {bytes, static_cast<std::size_t>(xcb_get_property_value_length(reply.get()))});
    }
    m_looks.set(looks.value_or(DesktopLooks{}));
}

}
