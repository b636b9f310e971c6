#pragma once

#include <cstdint>
#include <type_traits>

namespace quorvel {

/// The window server's number for a window; never reused while the program runs.
enum class WindowID : std::uint32_t { };

/// A process as the platform identifies it. Hosts may use private negative numbers.
enum class ProcessID : std::int32_t { };

/// The window server's number for a space (a virtual desktop).
enum class SpaceID : std::uint64_t { };

/// The platform's number for a connected display.
enum class DisplayNumber : std::uint32_t { };

template <typename Identifier>
    requires std::is_enum_v<Identifier>
constexpr auto raw(Identifier identifier)
{
    return static_cast<std::underlying_type_t<Identifier>>(identifier);
}

}
