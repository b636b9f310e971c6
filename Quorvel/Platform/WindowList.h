#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "Quorvel/Platform/Geometry.h"
#include "Quorvel/Platform/Identifiers.h"

namespace quorvel {

/// The keys of a window description in the window server's list.
namespace CGWindowKeys {
inline constexpr std::string_view windowNumber = "kCGWindowNumber";
inline constexpr std::string_view ownerPID = "kCGWindowOwnerPID";
inline constexpr std::string_view ownerName = "kCGWindowOwnerName";
inline constexpr std::string_view windowName = "kCGWindowName";
inline constexpr std::string_view layer = "kCGWindowLayer";
inline constexpr std::string_view bounds = "kCGWindowBounds";
inline constexpr std::string_view alpha = "kCGWindowAlpha";
}

/// One window of the window server's list; a key that is missing or has the wrong type is absent.
struct CGWindowInfo {
    std::optional<WindowID> windowNumber;
    std::optional<ProcessID> ownerPID;
    std::optional<std::int32_t> layer;
    std::optional<Rect> bounds; ///< points, global top-left origin
    std::optional<float> alpha;
    std::optional<std::string> ownerName;
    std::optional<std::string> windowName;

    friend bool operator==(const CGWindowInfo&, const CGWindowInfo&) = default;
};

/// `kCGWindowListExcludeDesktopElements` is the only set of options the program asks for.
inline constexpr std::uint32_t kWindowListExcludeDesktopElements = 16;

/// The outcome of requesting a list: a list that could not be read says nothing about any window.
enum class Listing { complete, failed };

/// The windows of all programs. Any thread.
class WindowList {
public:
    using WindowVisitor = std::function<void(const CGWindowInfo&)>;

    virtual ~WindowList() = default;

    /// Calls the visitor once per window, front to back where the system knows the order. The
    /// visitor must not call the platform: a lock may be held.
    virtual Listing enumerateWindows(std::uint32_t options, const WindowVisitor&) const = 0;
    /// The same for the windows of one process.
    virtual Listing enumerateWindows(
        ProcessID owner, std::uint32_t options, const WindowVisitor&) const
        = 0;
    /// The number by which other programs know the window; absent where there is none.
    virtual std::optional<std::uint32_t> nativeWindowNumber(WindowID) const = 0;
    /// Names the time during which those numbers are not given anew: in another session they belong
    /// to other windows. Absent where nothing tells one session from the next.
    virtual std::optional<std::string> windowSession() const = 0;
    /// Which of its application's kinds of windows it is, in words that are the same each time one
    /// of that kind is opened; not for users. Absent where windows do not say.
    virtual std::optional<std::string> windowRole(WindowID) const { return {}; }
};

}
