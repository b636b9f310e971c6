#include "Hosts/X11/KeyCodes.h"

#include <utility>

#include <xkbcommon/xkbcommon-keysyms.h>

#include "Hosts/Linux/Keys/KeyTable.h"

namespace quorvel::xdg::x11 {

namespace {

/// X key codes are the kernel's plus this, as on every current X server.
constexpr xcb_keycode_t kFirstDeviceCode = 8;

std::optional<KeyCode> bySymbol(std::uint32_t symbol)
{
    switch (symbol) {
    case XKB_KEY_Left:
    case XKB_KEY_KP_Left:
        return KeyCode::left;
    case XKB_KEY_Right:
    case XKB_KEY_KP_Right:
        return KeyCode::right;
    case XKB_KEY_Up:
    case XKB_KEY_KP_Up:
        return KeyCode::up;
    case XKB_KEY_Down:
    case XKB_KEY_KP_Down:
        return KeyCode::down;
    case XKB_KEY_Home:
    case XKB_KEY_KP_Home:
        return KeyCode::home;
    case XKB_KEY_End:
    case XKB_KEY_KP_End:
        return KeyCode::end;
    case XKB_KEY_Page_Up:
    case XKB_KEY_KP_Page_Up:
        return KeyCode::pageUp;
    case XKB_KEY_Page_Down:
    case XKB_KEY_KP_Page_Down:
        return KeyCode::pageDown;
    case XKB_KEY_Tab:
    case XKB_KEY_ISO_Left_Tab:
        return KeyCode::tab;
    case XKB_KEY_Return:
        return KeyCode::enter;
    case XKB_KEY_KP_Enter:
        return KeyCode::keypadEnter;
    case XKB_KEY_space:
        return KeyCode::space;
    case XKB_KEY_BackSpace:
        return KeyCode::backspace;
    case XKB_KEY_Delete:
    case XKB_KEY_KP_Delete:
        return KeyCode::forwardDelete;
    case XKB_KEY_Menu:
        return KeyCode::menu;
    case XKB_KEY_Escape:
        return KeyCode::escape;
    default:
        return std::nullopt;
    }
}

}

KeyCode keyCodeOf(xcb_keycode_t code, std::uint32_t symbol)
{
    if (auto key = bySymbol(symbol))
        return *key;
    if (code < kFirstDeviceCode)
        return KeyCode::unknown;
    const auto place = static_cast<std::uint16_t>(code - kFirstDeviceCode);
    const auto key = macKeyCodeOf(DeviceCode{place});
    return key ? KeyCode{*key} : KeyCode::unknown;
}

std::optional<xcb_keycode_t> xKeyCodeOf(std::uint32_t macKeyCode)
{
    const auto place = deviceCodeOf(macKeyCode);
    const auto code = place ? static_cast<unsigned>(*place) + kFirstDeviceCode : 0;
    if (!place || !std::in_range<xcb_keycode_t>(code))
        return {};
    return static_cast<xcb_keycode_t>(code);
}

}
