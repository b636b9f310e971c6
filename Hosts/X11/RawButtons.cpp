#include "Hosts/X11/RawButtons.h"

#include "Hosts/X11/Connection.h"

namespace quorvel::xdg::x11 {

RawButtons::RawButtons(
    Connection& connection, xcb_input_device_id_t devices, std::uint16_t eventType)
    : m_connection(connection)
    , m_devices(devices)
    , m_eventType(eventType)
{
    auto* extension = xcb_get_extension_data(connection.raw(), &xcb_input_id);
    if (!extension || !extension->present)
        return;
    m_extension = extension->major_opcode;
    // From version 2.1 on, raw events come in spite of grabs.
    auto cookie = xcb_input_xi_query_version(connection.raw(), 2, 2);
    xcb_discard_reply(connection.raw(), cookie.sequence);
}

void RawButtons::listen(bool isOn) const
{
    if (!areKnown())
        return;
    struct {
        xcb_input_event_mask_t head;
        std::uint32_t mask;
    } selection{{m_devices, 1}, isOn ? 1U << m_eventType : 0};
    xcb_input_xi_select_events(m_connection.raw(), m_connection.root(), 1, &selection.head);
}

bool RawButtons::areIn(const xcb_generic_event_t* event) const
{
    if (!areKnown() || (event->response_type & 0x7f) != XCB_GE_GENERIC)
        return false;
    auto* generic = reinterpret_cast<const xcb_ge_generic_event_t*>(event);
    return generic->extension == m_extension && generic->event_type == m_eventType;
}

}
