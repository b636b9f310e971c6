#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Quorvel/Core/DisplayItem.h"

namespace quorvel {

/// The order into which the user dragged the items of each space. It lasts as long as the program,
/// keeps the places of absent items, and puts unknown ones last. Main thread.
class ChipOrder {
public:
    std::vector<DisplayItem> apply(SpaceID, std::vector<DisplayItem>) const;

    /// Puts an item in front of another; last if there is no other, or it is not displayed. False
    /// if nothing changed.
    bool move(SpaceID, const std::string& id, const std::optional<std::string>& before,
        const std::vector<DisplayItem>& displayed);

private:
    std::map<SpaceID, std::vector<std::string>> m_chipOrderBySpace;
};

/// The identifier under which an item is displayed: for a window that has since been folded into a
/// group, the group's. Otherwise the identifier itself.
std::string canonicalDisplayItemID(const std::string& id, const std::vector<DisplayItem>& displayed,
    const std::vector<ChipData>& chips);

}
