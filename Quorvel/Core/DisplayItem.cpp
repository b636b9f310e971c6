#include "Quorvel/Core/DisplayItem.h"

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

bool isFocused(const DisplayItem& item)
{
    return std::visit([](auto& data) { return data.isFocused; }, item);
}

bool wantsAttention(const DisplayItem& item)
{
    return std::visit([](auto& data) { return data.wantsAttention; }, item);
}

}
