#include "Quorvel/Views/ReorderDrag.h"

#include <algorithm>
#include <utility>

namespace quorvel {

ReorderDrag::ReorderDrag(
    std::string draggedID, Frames startFrames, std::vector<std::string> visibleIDs)
    : m_draggedID(std::move(draggedID))
    , m_startFrames(std::move(startFrames))
    , m_visibleIDs(std::move(visibleIDs))
{
    for (auto& id : m_visibleIDs)
        m_slots.push_back(m_startFrames[id].x);
    m_startX = m_startFrames[m_draggedID].x;
    setTranslation({});
}

void ReorderDrag::setTranslation(Point translation)
{
    m_translation = translation;
    m_insertionIndex = insertionIndex(translation.x, m_draggedID, m_startFrames, m_visibleIDs);
}

int ReorderDrag::insertionIndex(double translationX, const std::string& draggedID,
    const Frames& startFrames, const std::vector<std::string>& visibleIDs)
{
    auto frameOf = [&](const std::string& id) {
        auto found = startFrames.find(id);
        return found == startFrames.end() ? Rect{} : found->second;
    };
    auto start = frameOf(draggedID);
    auto moved = start.translated(translationX, 0);
    int index = 0;
    for (auto& id : visibleIDs) {
        if (id == draggedID)
            continue;
        double middle = frameOf(id).centre().x;
        bool liesLeft = middle < start.centre().x;
        // On its way the frame reaches a neighbour's middle with the edge in front.
        index += liesLeft ? moved.x > middle : moved.maxX() > middle;
    }
    return index;
}

std::vector<std::string> ReorderDrag::previewOrder() const
{
    auto order = m_visibleIDs;
    std::erase(order, m_draggedID);
    auto at = std::clamp(m_insertionIndex, 0, static_cast<int>(order.size()));
    order.insert(order.begin() + at, m_draggedID);
    return order;
}

std::map<std::string, double> ReorderDrag::slotsOfOthers() const
{
    auto order = previewOrder();
    std::map<std::string, double> slots;
    for (std::size_t index = 0; index < order.size(); ++index) {
        if (order[index] != m_draggedID)
            slots.emplace(std::move(order[index]), m_slots[index]);
    }
    return slots;
}

std::optional<std::string> ReorderDrag::dropTargetID(
    const std::function<bool(const std::string&)>& isThere) const
{
    auto order = previewOrder();
    auto dragged = std::ranges::find(order, m_draggedID);
    auto next = std::find_if(dragged + 1, order.end(), isThere);
    return next == order.end() ? std::nullopt : std::optional{*next};
}

std::optional<std::string> nextPinnedAppIDAfterVisibleEnd(const std::string& draggedID,
    const std::vector<std::string>& visibleIDs, std::vector<std::string> fullList)
{
    std::erase(fullList, draggedID);
    auto others = visibleIDs;
    std::erase(others, draggedID);
    if (others.empty())
        return {};
    auto last = std::find(fullList.begin(), fullList.end(), others.back());
    if (last == fullList.end())
        return {};
    auto following = std::next(last);
    return following == fullList.end() ? std::nullopt : std::optional{*following};
}

}
