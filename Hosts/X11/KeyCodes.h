#pragma once

#include <cstdint>
#include <optional>

#include <xcb/xcb.h>

#include "Quorvel/Platform/KeyEvent.h"

namespace quorvel::xdg::x11 {

/// The Mac's key code for an X key code. Keys that move the focus or end something go by their
/// symbol, because the layout may have moved them (Escape on Caps Lock), and so may the number
/// lock.
KeyCode keyCodeOf(xcb_keycode_t, std::uint32_t symbol);

/// The X key code of the key at the place of the Mac's; absent if there is none.
std::optional<xcb_keycode_t> xKeyCodeOf(std::uint32_t macKeyCode);

}
