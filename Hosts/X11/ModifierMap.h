#pragma once

#include <cstdint>
#include <optional>
#include <vector>

namespace quorvel::xdg::x11 {

class Connection;

/// Which of the X server's modifier bits are which, by the keys that set them. Layouts and tools
/// move all but Shift, Lock and Control. A bit that no key sets is 0.
struct ModifierMap {
    std::uint16_t option = 0;
    std::uint16_t command = 0;
    std::uint16_t numLock = 0;
    std::uint16_t scrollLock = 0;

    /// As it is now; one round trip.
    static ModifierMap read(const Connection&);

    /// The bits for a mask of `HotkeyModifier`; absent if no key sets one of them.
    std::optional<std::uint16_t> bitsOf(std::uint32_t modifiers) const;
    /// The modifiers of `KeyModifier` in an event's state.
    std::uint64_t modifiersIn(std::uint16_t state) const;
    /// Every state that the locks can be in, as bits, with none of them first; locks that are among
    /// the given bits are left out.
    std::vector<std::uint16_t> lockStates(std::uint16_t without) const;

    friend bool operator==(const ModifierMap&, const ModifierMap&) = default;
};

}
