#include "Tests/X11/Support/Pointer.h"

#include <xcb/xtest.h>

namespace quorvel::x11tests {

void Pointer::moveTo(int x, int y)
{
    xcb_test_fake_input(m_connection.get(), XCB_MOTION_NOTIFY, 0, XCB_CURRENT_TIME,
        m_connection.root(), static_cast<std::int16_t>(x), static_cast<std::int16_t>(y), 0);
    m_connection.sync();
}

void Pointer::click(const Frame& frame, Button button)
{
    moveTo(frame.x + frame.width / 2, frame.y + frame.height / 2);
    for (const auto event : {XCB_BUTTON_PRESS, XCB_BUTTON_RELEASE})
        xcb_test_fake_input(m_connection.get(), static_cast<std::uint8_t>(event),
            static_cast<std::uint8_t>(button), XCB_CURRENT_TIME, m_connection.root(), 0, 0, 0);
    m_connection.sync();
}

}
