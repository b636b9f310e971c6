#include "Tests/X11/Support/Pointer.h"

#include <cstdlib>
#include <memory>

#include <xcb/xtest.h>

#include "Tests/X11/Support/Eventually.h"

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
    // Window managers hold each press back until they have looked at it. The server keeps the
    // release as long, and delivers it where the pointer is by then.
    EXPECT_TRUE(eventually(2s, [this] { return !isPressed(); }));
}

bool Pointer::isPressed()
{
    constexpr auto kButtons = XCB_BUTTON_MASK_1 | XCB_BUTTON_MASK_2 | XCB_BUTTON_MASK_3;
    const auto cookie = xcb_query_pointer(m_connection.get(), m_connection.root());
    const std::unique_ptr<xcb_query_pointer_reply_t, decltype(&std::free)> reply{
        xcb_query_pointer_reply(m_connection.get(), cookie, nullptr), &std::free};
    return reply && (reply->mask & kButtons) != 0;
}

}
