#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Quorvel/Core/DisplayItem.h"

namespace quorvel {

/// The order into which the user dragged the items of each space. It lives as long as the program
/// does, keeps the places of items that are away, and puts what it does not know last. Main thread.
class ChipOrder {
public:
    std::vector<DisplayItem> apply(SpaceID, std::vector<DisplayItem>) const;

    /// Puts an item in front of another, or last without one or if that is not displayed. False if
    /// nothing changed.
    bool move(SpaceID, const std::string& id, const std::optional<std::string>& before,
        const std::vector<DisplayItem>& displayed);

private:
    std::map<SpaceID, std::vector<std::string>> m_chipOrderBySpace;
};

/// The identifier by which an item is displayed: a window that was folded into a group since goes
/// by the group's. Without a better one, the identifier itself.
std::string canonicalDisplayItemID(const std::string& id, const std::vector<DisplayItem>& displayed,
    const std::vector<ChipData>& chips);

}
