#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

#include "Quorvel/Core/DisplayItem.h"

namespace quorvel {

/// The places of a row in their order, by identifier of the item that has each. While the row is
/// held, what goes leaves an empty slot, what comes is last, and an application whose windows
/// become a group, or a single one, keeps its slot. Values only.
class RowSlots {
public:
    /// True if the slots are others now.
    bool setItems(const std::vector<DisplayItem>&, bool isHeld);
    /// No longer held: just the items, in their own order.
    void settle() { m_slots = m_order; }
    /// As the user has arranged them; those that are not named come last.
    void arrange(std::vector<std::string> order);

    /// Some may be empty while held.
    const std::vector<std::string>& slots() const { return m_slots; }

private:
    std::vector<std::string> heldSlots(const std::vector<DisplayItem>&) const;

    std::vector<std::string> m_order; ///< of the newest items
    std::vector<std::string> m_slots;
    std::map<std::string, std::string> m_applications; ///< by the identifier of a slot
};

}
