#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "Quorvel/Platform/Accessibility.h"
#include "Quorvel/Platform/Displays.h"
#include "Quorvel/Platform/WindowServer.h"
#include "Quorvel/Platform/Workspace.h"

namespace quorvel::test {

struct FakeSpace {
    SpaceID id{};
    std::int64_t type = 0; ///< 4: full screen
    std::optional<std::string> name{};
    std::optional<std::string> uuid{};
};

struct FakeDisplay {
    DisplayNumber number{};
    std::string identifier{};
    Rect frame{}; ///< bottom-left origin of the first display
    Rect visibleFrame{}; ///< empty: the whole frame
    double scale = 1;
    std::vector<FakeSpace> spaces{};
    SpaceID current{};

    FakeDisplay rotated() const
    {
        auto turned = *this;
        std::swap(turned.frame.width, turned.frame.height);
        turned.visibleFrame = {};
        return turned;
    }
    FakeDisplay at(Point bottomLeft) const
    {
        auto moved = *this;
        moved.frame = Rect::from(bottomLeft, frame.size());
        moved.visibleFrame = {};
        return moved;
    }
};

/// How a window's accessibility element lies.
struct WindowFaults {
    bool isListed = true; ///< false: not in AXWindows, whatever the delay
    bool hasWindowNumber = true; ///< false: neither the resolver nor AXWindowNumber knows it
    std::set<std::string> missingAttributes{};
    std::map<std::string, AXValue> wrongAttributes{}; ///< answered instead of the truth
    std::set<std::string> ignoredRequests{}; ///< attributes and actions that succeed without effect
    std::set<std::string> refusedRequests{}; ///< attributes and actions that fail
};

/// What a window is opened with.
struct OpenOptions {
    std::string title = "Window";
    Rect frame{100, 100, 800, 600}; ///< global top-left origin
    std::set<SpaceID> spaces{}; ///< empty at first: the current space of the first display
    std::int32_t layer = 0;
    float alpha = 1;
    std::optional<std::string> role{ax::windowRole};
    std::optional<std::string> subrole{ax::standardWindowSubrole};
    bool isModal = false;
    bool isMinimized = false;
    Duration accessibilityDelay{}; ///< until AXWindows has it and its creation is announced
    Duration serverDelay{}; ///< until the window list and the space lists have it
    bool takesFocus = true; ///< within its application
    std::optional<std::uint32_t> number{}; ///< for other programs; absent: that of its identifier
    std::optional<std::string> windowRole{};
};

/// The button in a window's title bar.
struct FakeZoomButton {
    bool isEnabled = true;
    std::string subrole = "AXZoomButton";
    std::vector<std::string> actions{}; ///< that were performed
};

/// And what becomes of it.
struct FakeWindow : OpenOptions {
    WindowID id{};
    ProcessID pid{};
    Instant inAccessibilityFrom{};
    Instant inServerFrom{};
    WindowFaults faults{};
    /// Changes what the window server says of the window: takes keys away, tells old values.
    std::function<void(CGWindowInfo&)> distortEntry{};
    bool isInSpaceLists = true; ///< false: only `spacesOfWindows` knows where it is
    /// The states that can be switched, by attribute, each with whether it is on.
    std::map<std::string, bool, std::less<>> switches{};
    std::optional<FakeZoomButton> zoomButton{};
};

/// How an application answers accessibility messages.
struct ApplicationFaults {
    bool isHung = false; ///< each message costs its timeout and fails
    bool isDead = false; ///< each message fails at once
    int failingMessages = 0; ///< so many messages fail at once, then it answers
    bool answersRequestsLate = false; ///< they are done, but cost their timeout and fail
    std::optional<int> messagesUntilHang{}; ///< so many are answered, then it hangs
    int failingObservers = 0; ///< so many attempts to make an observer fail
    std::set<std::string> failingRegistrations{}; ///< notifications that cannot be registered
    std::set<std::string> missingAttributes{};
    std::map<std::string, AXValue> wrongAttributes{};
    std::set<std::string> swallowedNotifications{};
    std::set<std::string> duplicatedNotifications{};
    std::set<std::string> refusedRequests{};
    bool refusesActivation = false;
};

struct FakeApplication {
    RunningApplication info{};
    Instant answersFrom{}; ///< before this it is still starting: messages fail at once
    std::optional<WindowID> focusedWindow{};
    std::optional<WindowID> mainWindow{};
    ApplicationFaults faults{};
};

/// A window that the window server still lists after it has closed.
struct GhostWindow {
    FakeWindow window;
    Instant until;
};

/// The truth about the desktop. The services tell it, or lie about it.
struct DesktopModel {
    std::vector<FakeDisplay> displays;
    std::optional<DisplayNumber> mainDisplay; ///< absent: the first
    bool displaysHaveSeparateSpaces = true;
    std::map<ProcessID, FakeApplication> applications;
    std::map<WindowID, std::unique_ptr<FakeWindow>> windows;
    std::vector<WindowID> stacking; ///< front to back
    std::vector<GhostWindow> ghosts;
    std::optional<ProcessID> frontmost;
    Point pointer; ///< global top-left origin

    FakeApplication* application(ProcessID);
    FakeWindow* window(WindowID);
    FakeDisplay* displayOfSpace(SpaceID);
    const FakeDisplay* display(DisplayNumber) const;
    bool isCurrent(SpaceID) const;
    std::vector<FakeWindow*> windowsOf(ProcessID); ///< front to back
    /// The height from which bottom-left and top-left coordinates are converted.
    double flipHeight() const { return displays.empty() ? 0 : displays.front().frame.height; }
};

}
