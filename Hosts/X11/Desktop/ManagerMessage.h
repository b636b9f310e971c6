#pragma once

#include <array>
#include <cstdint>

#include <xcb/xcb.h>

namespace quorvel::xdg::x11 {

class Connection;

inline constexpr std::uint32_t kSourcePager = 2; ///< the user's own wish, not an application's
// Of `_NET_WM_STATE`.
inline constexpr std::uint32_t kRemoveState = 0;
inline constexpr std::uint32_t kAddState = 1;

/// Asks the window manager for something concerning this window, as pagers do. Goes out with the
/// next flush.
void sendToManager(
    Connection&, xcb_window_t, xcb_atom_t type, const std::array<std::uint32_t, 5>& data);

}
