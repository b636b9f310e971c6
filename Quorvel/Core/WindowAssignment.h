#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "Quorvel/Core/RememberedOrder.h"

namespace quorvel {

/// A window that looks for its place.
struct PlaceSeeker {
    RememberedWindow window; ///< its number does not count
    std::optional<std::size_t> current; ///< the place it has meanwhile
};

/// Gives each window the place of one like it: of the same application, and best with the same role
/// and title, then the same title, then the same role. Of equal choices a window keeps the place it
/// has, so that chips move only for a better one; else the first comes first. An answer for each
/// seeker: the index of its place, or absent if none of its application is left.
std::vector<std::optional<std::size_t>> assignPlaces(
    const std::vector<const RememberedWindow*>& places, const std::vector<PlaceSeeker>& seekers);

}
