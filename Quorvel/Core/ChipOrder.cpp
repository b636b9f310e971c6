#include "Quorvel/Core/ChipOrder.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <set>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace quorvel {

namespace {

std::vector<std::string> idsOf(const std::vector<DisplayItem>& items)
{
    std::vector<std::string> ids;
    ids.reserve(items.size());
    for (auto& item : items)
        ids.push_back(displayItemID(item));
    return ids;
}

constexpr std::string_view kAwaited = "awaited-";

/// The number in "s-4711".
std::optional<WindowID> windowIn(std::string_view id)
{
    constexpr std::string_view prefix = "s-";
    if (!id.starts_with(prefix))
        return std::nullopt;
    std::uint32_t number = 0;
    auto* end = id.data() + id.size();
    auto [rest, error] = std::from_chars(id.data() + prefix.size(), end, number);
    return error == std::errc{} && rest == end ? std::optional{WindowID{number}} : std::nullopt;
}

}

std::vector<DisplayItem> ChipOrder::apply(SpaceID space, std::vector<DisplayItem> items) const
{
    auto stored = m_chipOrderBySpace.find(space);
    if (stored == m_chipOrderBySpace.end() || stored->second.empty())
        return items;
    auto ids = idsOf(items);
    std::unordered_map<std::string_view, std::size_t> placeByID;
    for (std::size_t i = 0; i < ids.size(); ++i)
        placeByID.try_emplace(ids[i], i);

    std::vector<DisplayItem> ordered;
    ordered.reserve(items.size());
    std::unordered_set<std::string_view> emitted;
    for (auto& id : stored->second) {
        auto place = placeByID.find(id);
        if (place != placeByID.end() && emitted.insert(place->first).second)
            ordered.push_back(std::move(items[place->second]));
    }
    for (std::size_t i = 0; i < ids.size(); ++i) {
        if (!emitted.contains(ids[i]))
            ordered.push_back(std::move(items[i]));
    }
    return ordered;
}

bool ChipOrder::move(SpaceID space, const std::string& id, const std::optional<std::string>& before,
    const std::vector<DisplayItem>& displayed)
{
    auto ids = idsOf(displayed);
    auto order = m_chipOrderBySpace[space];
    const std::unordered_set<std::string_view> present(ids.begin(), ids.end());
    std::erase_if(order,
        [&](auto& stored) { return !present.contains(stored) && !stored.starts_with(kAwaited); });
    const std::set<std::string> placed(order.begin(), order.end());
    std::ranges::remove_copy_if(
        ids, std::back_inserter(order), [&](auto& shown) { return placed.contains(shown); });
    if (std::erase(order, id) == 0)
        return false;
    auto target = before ? std::find(order.begin(), order.end(), *before) : order.end();
    order.insert(target, id);
    m_chipOrderBySpace[space] = std::move(order);
    return true;
}

std::vector<std::string> ChipOrder::ids(SpaceID space) const
{
    auto stored = m_chipOrderBySpace.find(space);
    return stored == m_chipOrderBySpace.end() ? std::vector<std::string>{} : stored->second;
}

void ChipOrder::restore(SpaceID space, std::vector<std::string> ids)
{
    m_chipOrderBySpace[space] = std::move(ids);
}

std::vector<std::string> ChipOrder::take(SpaceID space)
{
    auto stored = m_chipOrderBySpace.extract(space);
    return stored ? std::move(stored.mapped()) : std::vector<std::string>{};
}

void ChipOrder::substitute(SpaceID space, const std::map<std::string, std::string>& newByOld)
{
    auto stored = m_chipOrderBySpace.find(space);
    if (stored == m_chipOrderBySpace.end())
        return;
    for (auto& id : stored->second) {
        if (auto found = newByOld.find(id); found != newByOld.end())
            id = found->second;
    }
}

std::string awaitedItemID(std::uint64_t number)
{
    return std::string{kAwaited} + std::to_string(number);
}

std::string canonicalDisplayItemID(const std::string& id, const std::vector<DisplayItem>& displayed,
    const std::vector<ChipData>& chips)
{
    auto isDisplayed = [&](const std::string& wanted) {
        return std::any_of(displayed.begin(), displayed.end(),
            [&](auto& item) { return displayItemID(item) == wanted; });
    };
    auto window = windowIn(id);
    if (!window || isDisplayed(id))
        return id;
    auto chip = std::find_if(
        chips.begin(), chips.end(), [&](auto& candidate) { return candidate.id == *window; });
    if (chip == chips.end())
        return id;
    auto group = groupItemID(groupKey(*chip));
    return isDisplayed(group) ? group : id;
}

}
