#include "Tests/X11/Support/Pointer.h"

#include <xcb/xtest.h>

#include "Tests/X11/Support/Eventually.h"

namespace quorvel::x11tests {

void Pointer::moveTo(int x, int y)
{
    xcb_test_fake_input(m_connection.get(), XCB_MOTION_NOTIFY, 0, XCB_CURRENT_TIME,
        m_connection.root(), static_cast<std::int16_t>(x), static_cast<std::int16_t>(y), 0);
    m_connection.sync();
}

void Pointer::press(Button button)
{
    change(XCB_BUTTON_PRESS, button);
}

void Pointer::release(Button button)
{
    change(XCB_BUTTON_RELEASE, button);
    // Window managers hold each press back until they have looked at it. The server keeps the
    // release as long, and delivers it where the pointer is by then.
    EXPECT_TRUE(eventually([&] { return !isPressed(button); }));
}

void Pointer::change(std::uint8_t event, Button button)
{
    xcb_test_fake_input(m_connection.get(), event, static_cast<std::uint8_t>(button),
        XCB_CURRENT_TIME, m_connection.root(), 0, 0, 0);
    m_connection.sync();
}

void Pointer::drag(const Frame& from, int toX, int toY)
{
    constexpr int kSteps = 8;
    const int x = from.x + from.width / 2;
    const int y = from.y + from.height / 2;
    moveTo(from);
    press(Button::primary);
    EXPECT_TRUE(eventually([this] { return isPressed(Button::primary); }));
    for (int step = 1; step <= kSteps; ++step)
        moveTo(x + (toX - x) * step / kSteps, y + (toY - y) * step / kSteps);
    release(Button::primary);
}

void Pointer::click(const Frame& frame, Button button)
{
    moveTo(frame);
    press(button);
    release(button);
}

bool Pointer::isPressed(Button button)
{
    const auto mask = XCB_BUTTON_MASK_1 << (static_cast<unsigned>(button) - 1);
    const auto reply = m_connection.wait(
        xcb_query_pointer_reply, xcb_query_pointer(m_connection.get(), m_connection.root()));
    return reply && (reply->mask & mask) != 0;
}

}
