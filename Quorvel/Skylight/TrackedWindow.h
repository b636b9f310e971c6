#pragma once

#include <optional>
#include <set>
#include <string>

#include "Quorvel/Platform/Geometry.h"
#include "Quorvel/Platform/Identifiers.h"

namespace quorvel {

/// One user window on the bar.
struct TrackedWindow {
    WindowID windowID{};
    ProcessID pid{};
    std::string appName;
    std::optional<std::string> bundleIdentifier;
    std::string windowTitle; ///< empty when unknown
    Rect frame; ///< points, global top-left origin
    bool isMinimized = false;
    std::set<SpaceID> spaceIDs;

    friend bool operator==(const TrackedWindow&, const TrackedWindow&) = default;
};

}
