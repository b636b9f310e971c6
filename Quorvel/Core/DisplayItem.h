#pragma once

#include <optional>
#include <string>
#include <variant>

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

    friend bool operator==(const ChipData&, const ChipData&) = default;
};

/// What the bar draws as one chip.
using DisplayItem = std::variant<ChipData>;

/// "s-" and the window's number.
std::string displayItemID(WindowID);
std::string displayItemID(const DisplayItem&);

}
