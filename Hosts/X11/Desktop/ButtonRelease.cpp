#include "Hosts/X11/Desktop/ButtonRelease.h"

#include "Hosts/X11/Connection.h"
#include "Hosts/X11/Desktop/RequestBatch.h"

namespace quorvel::xdg::x11 {

ButtonRelease::ButtonRelease(Connection& connection)
    : m_connection(connection)
    , m_releases(connection, XCB_INPUT_DEVICE_ALL_MASTER, XCB_INPUT_RAW_BUTTON_RELEASE)
{
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
    if (!m_releases.areKnown() || !isStillPressed())
        return false;
    m_releases.listen(true);
    // It may have been released before this program listened.
    m_isWaiting = isStillPressed();
    if (!m_isWaiting)
        m_releases.listen(false);
    return m_isWaiting;
}

bool ButtonRelease::handle(const xcb_generic_event_t* event)
{
    if (!m_isWaiting || !m_releases.areIn(event) || isStillPressed())
        return false;
    m_isWaiting = false;
    m_releases.listen(false);
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

}
