#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

#include "Quorvel/Core/DisplayItem.h"

namespace quorvel {

/// The slots of a row in order, by identifier of the item in each. While the row is held, an item
/// that goes leaves an empty slot, a new one is added at the end, and an application whose windows
/// become a group, or a single one, keeps its slot. Values only.
class RowSlots {
public:
    /// True if the slots changed. Items that have a place elsewhere get no slot while the row is
    /// held.
    bool setItems(const std::vector<DisplayItem>&, bool isHeld,
        const std::set<std::string>& placedElsewhere = {});
    bool contains(const std::string& id) const;
    /// No longer held: just the items, in their own order.
    void settle() { m_slots = m_order; }
    /// In the user's order; items that it does not name come last.
    void arrange(std::vector<std::string> order);

    /// Some may be empty while held.
    const std::vector<std::string>& slots() const { return m_slots; }

private:
    std::vector<std::string> heldSlots(
        const std::vector<DisplayItem>&, const std::set<std::string>& placedElsewhere) const;

    std::vector<std::string> m_order; ///< of the latest items
    std::vector<std::string> m_slots;
    std::map<std::string, std::string> m_applications; ///< by the identifier of a slot
};

}
