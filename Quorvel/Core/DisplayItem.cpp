#include "Quorvel/Core/DisplayItem.h"

#include <algorithm>

namespace quorvel {

const std::string& groupKey(const ChipData& chip)
{
    return chip.bundleIdentifier ? *chip.bundleIdentifier : chip.appName;
}

std::string displayItemID(WindowID window)
{
    return "s-" + std::to_string(raw(window));
}

std::string groupItemID(std::string_view groupKey)
{
    return "group-" + std::string{groupKey};
}

std::string displayItemID(const DisplayItem& item)
{
    if (auto* group = std::get_if<GroupedChipData>(&item))
        return group->id;
    return displayItemID(std::get<ChipData>(item).id);
}

void summarize(GroupedChipData& group, const std::vector<const ChipData*>& chips)
{
    group.windowCount = static_cast<int>(group.windowIDs.size());
    group.isFocused = std::ranges::any_of(chips, &ChipData::isFocused);
    group.isMinimized = std::ranges::all_of(chips, &ChipData::isMinimized);
    // Where windows ask for themselves, one that asks is enough.
    auto asking = std::ranges::find_if(chips, &ChipData::wantsAttention);
    group.wantsAttention = asking != chips.end();
    group.hasNews = std::ranges::any_of(chips, &ChipData::hasNews);
    group.attentionWindow = asking == chips.end() ? std::nullopt : std::optional{(*asking)->id};
}

bool isFocused(const DisplayItem& item)
{
    return std::visit([](auto& data) { return data.isFocused; }, item);
}

bool wantsAttention(const DisplayItem& item)
{
    return std::visit([](auto& data) { return data.wantsAttention; }, item);
}

bool hasNews(const DisplayItem& item)
{
    return std::visit([](auto& data) { return data.hasNews; }, item);
}

}
