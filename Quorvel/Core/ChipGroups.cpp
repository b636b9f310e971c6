#include "Quorvel/Core/ChipGroups.h"

#include <algorithm>
#include <iterator>
#include <unordered_map>
#include <utility>

#include "Quorvel/Platform/Trace.h"
#include "Quorvel/Skylight/Minimal.h"

namespace quorvel {

namespace {

const ChipData* chipOf(const std::vector<const ChipData*>& bucket, std::optional<WindowID> id)
{
    auto found
        = std::find_if(bucket.begin(), bucket.end(), [&](auto* chip) { return chip->id == id; });
    return found == bucket.end() ? nullptr : *found;
}

/// The bucket's chips, that of the representative first.
std::vector<const ChipData*> ordered(
    const std::vector<const ChipData*>& bucket, const ChipData* representative)
{
    auto chips = bucket;
    std::ranges::stable_partition(
        chips, [representative](auto* chip) { return chip == representative; });
    return chips;
}

std::string joined(const std::vector<WindowID>& ids)
{
    std::string text;
    for (auto id : ids)
        text += (text.empty() ? "" : ",") + std::to_string(raw(id));
    return text;
}

}

std::vector<DisplayItem> ChipGroups::group(SpaceID space, const std::vector<const ChipData*>& chips,
    std::optional<WindowID> focused, std::uint64_t sequence)
{
    m_sequence = sequence;
    std::vector<Bucket> buckets;
    std::unordered_map<std::string_view, std::size_t> bucketByKey;
    for (auto* chip : chips) {
        auto [known, isNew] = bucketByKey.try_emplace(groupKey(*chip), buckets.size());
        if (isNew)
            buckets.emplace_back();
        buckets[known->second].push_back(chip);
    }

    std::vector<DisplayItem> items;
    items.reserve(buckets.size());
    for (auto& bucket : buckets) {
        GroupOfSpace group{space, groupKey(*bucket.front())};
        items.push_back(
            bucket.size() == 1 ? single(group, *bucket.front()) : grouped(group, bucket, focused));
    }
    return items;
}

void ChipGroups::prefer(SpaceID space, std::string_view groupKey, WindowID window)
{
    m_preferredWindowIDByGroupKey.insert_or_assign({space, std::string{groupKey}}, window);
}

bool ChipGroups::isPreferred(SpaceID space, std::string_view groupKey, WindowID window) const
{
    return preferred({space, std::string{groupKey}}) == window;
}

void ChipGroups::keepOnly(const std::set<SpaceID>& spaces)
{
    std::erase_if(m_preferredWindowIDByGroupKey,
        [&](auto& entry) { return !spaces.contains(entry.first.first); });
}

DisplayItem ChipGroups::single(const GroupOfSpace& group, const ChipData& chip)
{
    auto dropped = m_preferredWindowIDByGroupKey.extract(group);
    if (dropped && m_trace.isOn())
        m_trace.line("group space={} key={} downgraded-single clearPreferred={} seq={}",
            raw(group.first), sanitizeLogField(groupKey(chip)), raw(dropped.mapped()), m_sequence);
    return chip;
}

DisplayItem ChipGroups::grouped(
    const GroupOfSpace& groupOfSpace, const Bucket& bucket, std::optional<WindowID> focused)
{
    auto* focusedChip = focused ? chipOf(bucket, focused) : nullptr;
    follow(groupOfSpace, bucket, focusedChip);
    auto preferredID = preferred(groupOfSpace);
    auto* representative = focusedChip ? focusedChip : chipOf(bucket, preferredID);
    auto& title = representative ? *representative : *bucket.front();
    auto chips = ordered(bucket, representative);
    std::vector<WindowID> ids;
    std::ranges::transform(chips, std::back_inserter(ids), [](auto* chip) { return chip->id; });
    if (m_trace.isOn())
        m_trace.line("group space={} key={} focused={} preferred={} titleChip={} ordered={} seq={}",
            raw(groupOfSpace.first), sanitizeLogField(groupKey(title)), orNil(focused),
            orNil(preferredID), raw(title.id), joined(ids), m_sequence);
    GroupedChipData group{
        .id = groupItemID(groupKey(title)),
        .appName = title.appName,
        .bundleIdentifier = title.bundleIdentifier,
        .displayTitle = title.windowTitle.empty() ? title.appName : title.windowTitle,
        .icon = title.icon,
        .windowIDs = std::move(ids),
        .badge = title.badge,
        .progress = title.progress,
    };
    summarize(group, chips);
    return group;
}

void ChipGroups::follow(const GroupOfSpace& group, const Bucket& bucket, const ChipData* focused)
{
    auto old = preferred(group);
    if (focused) {
        if (old == focused->id)
            return;
        m_preferredWindowIDByGroupKey.insert_or_assign(group, focused->id);
        if (m_trace.isOn())
            m_trace.line("group space={} key={} preferredFromFocused old={} new={} seq={}",
                raw(group.first), sanitizeLogField(groupKey(*focused)), orNil(old),
                raw(focused->id), m_sequence);
    } else if (old && !chipOf(bucket, old)) {
        m_preferredWindowIDByGroupKey.erase(group);
        if (m_trace.isOn())
            m_trace.line("group space={} key={} preferredMissing remove={} seq={}",
                raw(group.first), sanitizeLogField(groupKey(*bucket.front())), raw(*old),
                m_sequence);
    }
}

std::optional<WindowID> ChipGroups::preferred(const GroupOfSpace& group) const
{
    auto found = m_preferredWindowIDByGroupKey.find(group);
    return found == m_preferredWindowIDByGroupKey.end() ? std::nullopt
                                                        : std::optional{found->second};
}

}
