#include "Tests/X11/Support/Keyboard.h"

#include <gtest/gtest.h>
#include <xcb/xtest.h>

namespace quorvel::x11tests {

std::uint8_t Keyboard::keyOf(std::uint32_t symbol)
{
    const auto* const setup = xcb_get_setup(m_connection.get());
    const int first = setup->min_keycode;
    const int count = setup->max_keycode - first + 1;
    const auto cookie = xcb_get_keyboard_mapping(
        m_connection.get(), setup->min_keycode, static_cast<std::uint8_t>(count));
    const auto map = m_connection.wait(xcb_get_keyboard_mapping_reply, cookie);
    for (int i = 0; map && i < count; ++i) {
        if (xcb_get_keyboard_mapping_keysyms(map.get())[i * map->keysyms_per_keycode] == symbol)
            return static_cast<std::uint8_t>(first + i);
    }
    ADD_FAILURE() << "no key for symbol " << symbol;
    return 0;
}

void Keyboard::type(std::uint32_t symbol)
{
    tap(keyOf(symbol));
}

void Keyboard::tap(std::uint8_t key)
{
    press(key);
    release(key);
}

void Keyboard::chord(std::uint8_t held, std::uint8_t key)
{
    press(held);
    tap(key);
    release(held);
}

void Keyboard::change(std::uint8_t event, std::uint8_t key)
{
    xcb_test_fake_input(
        m_connection.get(), event, key, XCB_CURRENT_TIME, m_connection.root(), 0, 0, 0);
    m_connection.sync();
}

bool Keyboard::isGrabbed()
{
    auto* raw = m_connection.get();
    xcb_grab_server(raw); // or whoever wants to grab it now would find it taken
    const auto reply = m_connection.wait(xcb_grab_keyboard_reply,
        xcb_grab_keyboard(raw, false, m_connection.root(), XCB_CURRENT_TIME, XCB_GRAB_MODE_ASYNC,
            XCB_GRAB_MODE_ASYNC));
    const auto status = reply ? reply->status : std::uint8_t{XCB_GRAB_STATUS_NOT_VIEWABLE};
    if (status == XCB_GRAB_STATUS_SUCCESS)
        xcb_ungrab_keyboard(raw, XCB_CURRENT_TIME);
    xcb_ungrab_server(raw);
    m_connection.sync();
    return status == XCB_GRAB_STATUS_ALREADY_GRABBED;
}

}
