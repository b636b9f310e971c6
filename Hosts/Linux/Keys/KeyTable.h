#pragma once

#include <cstdint>
#include <optional>

namespace quorvel::xdg {

/// A key by its place, as the kernel numbers it (linux/input-event-codes.h); X and Wayland add 8.
enum class DeviceCode : std::uint16_t { };

/// The Mac's virtual key code of the key at this place; absent where a Mac has none.
std::optional<std::uint16_t> macKeyCodeOf(DeviceCode);

/// The key at the place of the Mac's. Where a PC's keyboard has two, the one on most of them:
/// Print, Scroll Lock and Pause for F13 to F15.
std::optional<DeviceCode> deviceCodeOf(std::uint32_t macKeyCode);

}
