#pragma once

#include <cstdint>

#include <xcb/xcb.h>

#include "Quorvel/Platform/KeyEvent.h"

namespace quorvel::xdg::x11 {

/// The key of that number as the Mac counts keys. Numbers are those of the kernel's event devices
/// plus 8, as with every X server of today. What moves, ends or leads on goes by its symbol: the
/// layout may have put it elsewhere (Escape on Caps Lock), and so may the number lock.
KeyCode keyCodeOf(xcb_keycode_t, std::uint32_t symbol);

}
