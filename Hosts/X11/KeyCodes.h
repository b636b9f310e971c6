#pragma once

#include <cstdint>

#include <xcb/xcb.h>

#include "Quorvel/Platform/KeyEvent.h"

namespace quorvel::xdg::x11 {

/// The Mac's key code for an X key code. X key codes are the kernel's plus 8, as on every current X
/// server. Keys that move the focus or end something go by their symbol, because the layout may
/// have moved them (Escape on Caps Lock), and so may the number lock.
KeyCode keyCodeOf(xcb_keycode_t, std::uint32_t symbol);

}
