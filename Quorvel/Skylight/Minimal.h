#pragma once

#include <array>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>

#include "Quorvel/Platform/Dispatch.h"
#include "Quorvel/Platform/Identifiers.h"
#include "Quorvel/Platform/WindowList.h"

namespace quorvel {

class Workspace;

/// What the accessibility tree says of one window; what could not be read is absent.
struct AXWindowMetadata {
    std::optional<std::string> title;
    std::optional<std::string> role;
    std::optional<std::string> subrole;
    std::optional<bool> isModal;
    std::optional<bool> isMinimized;

    friend bool operator==(const AXWindowMetadata&, const AXWindowMetadata&) = default;
};

using AXWindowMetadataByID = std::map<WindowID, AXWindowMetadata>;

/// Parts of the system whose windows are never the user's and whose activation is ignored.
inline constexpr std::array<std::string_view, 6> kSystemBundleIdentifiers{
    "com.apple.dock",
    "com.apple.WindowManager",
    "com.apple.controlcenter",
    "com.apple.Spotlight",
    "com.apple.notificationcenterui",
    "com.apple.loginwindow",
};

/// Windows narrower or lower than this many points are never on the bar.
inline constexpr double kMinimumWindowExtent = 40;
/// False too for a frame with an extent that is not a number.
bool isLargeEnough(const Rect& frame);

/// The processes whose windows may be on the bar, computed again whatever `cacheTTL` is.
std::set<ProcessID> dockEligibleOwnerPIDs(const Workspace&, Duration cacheTTL = {});

bool isSystemBundleIdentifier(std::string_view);

enum class WindowFilter { passed, layerNotZero, boundsTooSmall, fullyTransparent };

/// The first of the window server's filters that rejects the window.
WindowFilter windowFilter(const CGWindowInfo&);
/// Why, for the log.
std::string rejectionReason(WindowFilter, const CGWindowInfo&);

bool isDockEligibleAXWindow(const AXWindowMetadata&);
std::string axIneligibilityReason(const AXWindowMetadata&);

struct WindowAdmission {
    std::optional<std::string> rejectionReason{}; ///< absent: admitted
    bool isConfirmed = false; ///< listed by accessibility, and eligible
    bool isSoft = false; ///< the application may just not have published the window yet
};

WindowAdmission cgWindowAXAdmission(WindowID, const AXWindowMetadataByID&, bool hasAXWindowList);

/// Text from other applications made safe for one log line; "<empty>" for none.
std::string sanitizeLogField(const std::optional<std::string>&);

}
