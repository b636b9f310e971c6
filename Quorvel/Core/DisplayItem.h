#pragma once

#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "Quorvel/Platform/Identifiers.h"
#include "Quorvel/Platform/Image.h"

namespace quorvel {

/// One window chip.
struct ChipData {
    WindowID id{};
    std::string appName;
    std::optional<std::string> bundleIdentifier;
    std::string windowTitle;
    Image icon;
    bool isFocused = false;
    bool isMinimized = false;
    std::optional<std::string> badge;
    bool wantsAttention = false;
    bool hasNews = false; ///< in its title, since it was last in front
    /// From 0 to 1.
    std::optional<double> progress;

    friend bool operator==(const ChipData&, const ChipData&) = default;
};

/// One chip for several windows of one application on one space; always two or more.
struct GroupedChipData {
    std::string id;
    std::string appName;
    std::optional<std::string> bundleIdentifier;
    std::string displayTitle;
    Image icon;
    int windowCount = 0;
    /// The representative first, the others in the order of the chips.
    std::vector<WindowID> windowIDs;
    bool isFocused = false;
    bool isMinimized = false; ///< true if all of them are
    std::optional<std::string> badge;
    bool wantsAttention = false;
    /// The first of them that asks for attention; absent if none does.
    std::optional<WindowID> attentionWindow{};
    bool hasNews = false; ///< one of them has
    std::optional<double> progress;

    friend bool operator==(const GroupedChipData&, const GroupedChipData&) = default;
};

/// What the bar draws as one chip.
using DisplayItem = std::variant<ChipData, GroupedChipData>;

/// The bundle identifier, else the application's name.
const std::string& groupKey(const ChipData&);
/// "s-" and the window's number.
std::string displayItemID(WindowID);
/// "group-" and the group's key.
std::string groupItemID(std::string_view groupKey);
std::string displayItemID(const DisplayItem&);
/// Derives the group's state from its windows: `chips` are theirs, in the group's order.
void summarize(GroupedChipData&, const std::vector<const ChipData*>& chips);
bool isFocused(const DisplayItem&);
bool wantsAttention(const DisplayItem&);
bool hasNews(const DisplayItem&);

}
