#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace quorvel {

/// What a window is known again by.
struct RememberedWindow {
    std::optional<std::uint32_t> number{}; ///< `WindowList::nativeWindowNumber`, for one session
    std::string application{}; ///< its group key
    std::string role{}; ///< `WindowList::windowRole`; empty: unknown
    std::string title{};
    bool isFront = false; ///< it represents its group on the space

    friend bool operator==(const RememberedWindow&, const RememberedWindow&) = default;
};

/// What a space is known again by: its uuid where the system has one, else its name or its place
/// among the spaces of its display.
struct SpaceIdentity {
    std::string display; ///< the window server's identifier
    std::string uuid; ///< empty: none
    std::string name; ///< empty: none
    int index = 0;

    friend bool operator==(const SpaceIdentity&, const SpaceIdentity&) = default;
};

/// A place in the user's own order: a window, by its index in the space's list, or a group, by its
/// key.
using RememberedItem = std::variant<std::size_t, std::string>;

struct RememberedSpace {
    SpaceIdentity identity;
    std::vector<RememberedWindow> windows; ///< in the order of their chips
    std::vector<RememberedItem> order; ///< into which the user dragged them; empty: never

    friend bool operator==(const RememberedSpace&, const RememberedSpace&) = default;
};

/// The order of all chips, as it outlives the program.
struct RememberedOrder {
    std::string session; ///< in which the window numbers hold; empty: in none
    std::vector<RememberedSpace> spaces;

    friend bool operator==(const RememberedOrder&, const RememberedOrder&) = default;
};

}
