#include "Quorvel/Views/RowSlots.h"

#include <algorithm>
#include <utility>

namespace quorvel {

namespace {

/// Its windows keep one slot, alone or as a group.
const std::string& application(const DisplayItem& item)
{
    return std::visit(
        [](auto& data) -> const std::string& {
            return data.bundleIdentifier ? *data.bundleIdentifier : data.appName;
        },
        item);
}

bool isGroup(std::string_view chipID)
{
    return chipID.starts_with(groupItemID(""));
}

}

bool RowSlots::setItems(const std::vector<DisplayItem>& items, bool isHeld,
    const std::set<std::string>& placedElsewhere)
{
    m_order.clear();
    for (auto& item : items)
        m_order.push_back(displayItemID(item));
    auto slots = isHeld ? heldSlots(items, placedElsewhere) : m_order;
    for (auto& item : items)
        m_applications[displayItemID(item)] = application(item);
    if (slots == m_slots)
        return false;
    m_slots = std::move(slots);
    std::set<std::string_view> present(m_slots.begin(), m_slots.end());
    std::erase_if(m_applications, [&](auto& entry) { return !present.contains(entry.first); });
    return true;
}

void RowSlots::arrange(std::vector<std::string> order)
{
    std::set<std::string_view> arranged(order.begin(), order.end());
    for (auto& slot : m_slots) {
        if (!arranged.contains(slot))
            order.push_back(std::move(slot));
    }
    m_slots = std::move(order);
}

bool RowSlots::contains(const std::string& id) const
{
    return std::ranges::find(m_slots, id) != m_slots.end();
}

std::vector<std::string> RowSlots::heldSlots(
    const std::vector<DisplayItem>& items, const std::set<std::string>& placedElsewhere) const
{
    std::set<std::string_view> present(m_order.begin(), m_order.end());
    std::set<std::string_view> placed(m_slots.begin(), m_slots.end());
    auto slots = m_slots;
    for (std::size_t index = 0; index < items.size(); ++index) {
        auto& id = m_order[index];
        if (placed.contains(id) || placedElsewhere.contains(id))
            continue;
        auto isEmpty = [&](auto& slot) { return !present.contains(slot); };
        auto slot = std::ranges::find_if(slots, [&](auto& old) {
            auto known = m_applications.find(old);
            return isEmpty(old) && known != m_applications.end()
                && known->second == application(items[index]) && isGroup(old) != isGroup(id);
        });
        // Else last: in the first of the slots at the end that are empty.
        if (slot == slots.end())
            slot = std::find_if_not(slots.rbegin(), slots.rend(), isEmpty).base();
        if (slot == slots.end())
            slots.push_back(id);
        else
            *slot = id;
    }
    return slots;
}

}
