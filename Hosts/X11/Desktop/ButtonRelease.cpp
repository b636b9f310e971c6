#include "Hosts/X11/Desktop/ButtonRelease.h"

#include <xcb/xinput.h>

#include "Hosts/X11/Connection.h"
#include "Hosts/X11/Desktop/RequestBatch.h"

namespace quorvel::x11 {

ButtonRelease::ButtonRelease(Connection& connection) : m_connection(connection)
{
    auto* extension = xcb_get_extension_data(connection.raw(), &xcb_input_id);
    if (!extension || !extension->present)
        return;
    m_extension = extension->major_opcode;
    // From version 2.1 on, raw events come in spite of grabs.
    auto cookie = xcb_input_xi_query_version(connection.raw(), 2, 2);
    xcb_discard_reply(connection.raw(), cookie.sequence);
}

bool ButtonRelease::isPressed(std::uint32_t pointerMask)
{
    constexpr std::uint32_t buttons = XCB_BUTTON_MASK_1 | XCB_BUTTON_MASK_2 | XCB_BUTTON_MASK_3;
    return (pointerMask & buttons) != 0;
}

bool ButtonRelease::wait()
{
    if (m_isWaiting)
        return true;
    if (!m_extension || !isStillPressed())
        return false;
    select(true);
    // It may have been released before this program listened.
    m_isWaiting = isStillPressed();
    if (!m_isWaiting)
        select(false);
    return m_isWaiting;
}

bool ButtonRelease::handle(const xcb_generic_event_t* event)
{
    if (!m_isWaiting || (event->response_type & 0x7f) != XCB_GE_GENERIC)
        return false;
    auto* generic = reinterpret_cast<const xcb_ge_generic_event_t*>(event);
    bool isRelease
        = generic->extension == m_extension && generic->event_type == XCB_INPUT_RAW_BUTTON_RELEASE;
    if (!isRelease || isStillPressed())
        return false;
    m_isWaiting = false;
    select(false);
    return true;
}

bool ButtonRelease::isStillPressed() const
{
    bool isStill = false;
    RequestBatch batch{m_connection.raw()};
    batch.pointerMask(
        m_connection.root(), [&](auto mask) { isStill = isPressed(mask.value_or(0)); });
    batch.finish();
    return isStill;
}

void ButtonRelease::select(bool isOn) const
{
    struct {
        xcb_input_event_mask_t head;
        std::uint32_t mask;
    } selection{{XCB_INPUT_DEVICE_ALL_MASTER, 1}, 0};
    if (isOn)
        selection.mask = XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_RELEASE;
    xcb_input_xi_select_events(m_connection.raw(), m_connection.root(), 1, &selection.head);
}

}
