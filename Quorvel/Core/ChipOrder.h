#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Quorvel/Core/DisplayItem.h"

namespace quorvel {

/// The order into which the user dragged the items of each space. It keeps the places of absent
/// items and puts unknown ones last; `OrderMemory` carries it over the end of the program. Main
/// thread.
class ChipOrder {
public:
    std::vector<DisplayItem> apply(SpaceID, std::vector<DisplayItem>) const;

    /// Puts an item in front of another; last if there is no other, or it is not displayed. False
    /// if nothing changed.
    bool move(SpaceID, const std::string& id, const std::optional<std::string>& before,
        const std::vector<DisplayItem>& displayed);

    /// Empty for a space whose items the user never moved.
    std::vector<std::string> ids(SpaceID) const;
    void restore(SpaceID, std::vector<std::string> ids);
    /// The same, for a space that goes; its number may never come again.
    std::vector<std::string> take(SpaceID);
    /// Puts other identifiers into the places of these.
    void substitute(SpaceID, const std::map<std::string, std::string>& newByOld);

private:
    std::map<SpaceID, std::vector<std::string>> m_chipOrderBySpace;
};

/// Stands in the order for a window that is remembered and may come back; `move` leaves it in its
/// place.
std::string awaitedItemID(std::uint64_t number);

/// The identifier under which an item is displayed: for a window that has since been folded into a
/// group, the group's. Otherwise the identifier itself.
std::string canonicalDisplayItemID(const std::string& id, const std::vector<DisplayItem>& displayed,
    const std::vector<ChipData>& chips);

}
