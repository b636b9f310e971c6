#include "Hosts/X11/KeyCodes.h"

#include <array>
#include <optional>

#include <xkbcommon/xkbcommon-keysyms.h>

namespace quorvel::xdg::x11 {

namespace {

constexpr std::uint16_t none = 0xFFFF;
constexpr xcb_keycode_t kFirstDeviceCode = 8;

// clang-format off
/// By the kernel's codes (linux/input-event-codes.h), ten to a row.
constexpr std::array<std::uint16_t, 130> kByDeviceCode{
    none,   53,   18,   19,   20,   21,   23,   22,   26,   28,
      25,   29,   27,   24,   51,   48,   12,   13,   14,   15,
      17,   16,   32,   34,   31,   35,   33,   30,   36,   59,
       0,    1,    2,    3,    5,    4,   38,   40,   37,   41,
      39,   50,   56,   42,    6,    7,    8,    9,   11,   45,
      46,   43,   47,   44,   60,   67,   58,   49,   57,  122,
     120,   99,  118,   96,   97,   98,  100,  101,  109,   71,
     107,   89,   91,   92,   78,   86,   87,   88,   69,   83,
      84,   85,   82,   65, none, none,   10,  103,  111,   94,
    none, none, none,  104,  102,   95,   76,   62,   75,  105,
      61, none,  115,  126,  116,  123,  124,  119,  125,  121,
     114,  117, none,   74,   73,   72, none,   81, none,  113,
    none,   95, none, none,   93,   55,   54,  110, none, none};
// clang-format on

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
    std::size_t place = static_cast<std::size_t>(code) - kFirstDeviceCode;
    return KeyCode{place < kByDeviceCode.size() ? kByDeviceCode[place] : none};
}

}
