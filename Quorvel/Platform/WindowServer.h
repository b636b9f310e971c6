#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "Quorvel/Platform/Geometry.h"
#include "Quorvel/Platform/Identifiers.h"
#include "Quorvel/Platform/Published.h"

namespace quorvel {

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

/// One entry of a display's list of spaces, as the window server gives it.
struct ManagedSpace {
    std::optional<std::uint64_t> id64;
    std::optional<std::uint64_t> managedSpaceID;
    std::optional<std::int64_t> type;
};

struct ManagedDisplay {
    /// "Display Identifier": a text, a number, or missing.
    std::variant<std::monostate, std::string, std::int64_t> identifier;
    std::vector<ManagedSpace> spaces;
    std::optional<ManagedSpace> currentSpace;
};

/// `kCGWindowListExcludeDesktopElements` is the only set of options the program asks for.
inline constexpr std::uint32_t kWindowListExcludeDesktopElements = 16;

/// Which windows of a space `windowsOfSpaces` names; 2 leaves out what is ordered out.
inline constexpr std::uint32_t kSpaceWindowOptions = 2;

/// Every kind of space in `spacesOfWindows`.
inline constexpr std::uint32_t kAllSpacesMask = 7;

/// What became of a list that was asked for: one that could not be had says nothing of any window.
enum class Listing { complete, failed };

enum class ScreenEdge { bottom = 2 };

/// The strip of a display that belongs to the bar.
struct DockRectangle {
    DisplayNumber display;
    Rect rect; ///< points, global top-left origin
};

/// The keys that the system itself listens to for one of its own actions.
struct SymbolicHotKey {
    std::uint16_t keyCode = 0; ///< virtual key code of the key table
    std::uint64_t modifierFlags = 0;

    friend bool operator==(const SymbolicHotKey&, const SymbolicHotKey&) = default;
};

enum class KeyAction { down, up };
enum class PointerPost { moved, pressed, dragged, released };

/// The window server: which windows there are and on which spaces. Queries from any thread; signals
/// on the main thread. A call that the system lacks answers with nothing.
class WindowServer {
public:
    using ConnectionID = std::int32_t;

    virtual ~WindowServer() = default;

    virtual ConnectionID mainConnection() const = 0;

    using WindowVisitor = std::function<void(const CGWindowInfo&)>;

    /// Calls the visitor once per window, front to back where the system knows. The visitor must
    /// not call the platform: a lock may be held.
    virtual Listing enumerateWindows(std::uint32_t options, const WindowVisitor&) const = 0;
    /// The same for the windows of one process.
    virtual Listing enumerateWindows(
        ProcessID owner, std::uint32_t options, const WindowVisitor&) const = 0;
    /// The number by which other programs know the window; absent where there is no other.
    virtual std::optional<std::uint32_t> nativeWindowNumber(WindowID) const = 0;

    /// Absent when the call fails or answers with something else than a list.
    virtual std::optional<std::vector<ManagedDisplay>> managedDisplaySpaces(ConnectionID) const = 0;
    /// Absent when the call fails.
    virtual std::optional<std::vector<WindowID>> windowsOfSpaces(
        ConnectionID, const std::vector<SpaceID>&, std::uint32_t options) const = 0;
    /// For several windows at once: the union of their spaces. Absent when the call fails.
    virtual std::optional<std::vector<SpaceID>> spacesOfWindows(
        ConnectionID, std::uint32_t mask, const std::vector<WindowID>&) const = 0;
    virtual SpaceID activeSpace(ConnectionID) const = 0;
    /// The user's name for a space, where the system has names.
    virtual std::optional<std::string> spaceName(SpaceID) const = 0;
    virtual bool displaysHaveSeparateSpaces() const = 0;

    virtual void addWindowsToSpaces(
        ConnectionID, const std::vector<WindowID>&, const std::vector<SpaceID>&)
        = 0;
    virtual void removeWindowsFromSpaces(
        ConnectionID, const std::vector<WindowID>&, const std::vector<SpaceID>&)
        = 0;
    /// Keeps a strip of `height` points at an edge of the space free of other windows; 0 ends it.
    virtual void setEdgeReservation(ConnectionID, SpaceID, ScreenEdge, double height) = 0;
    /// Tells the window server that the bar lies there, so that maximised windows end above it.
    virtual void setDockRectangle(ConnectionID, const DockRectangle&) = 0;
    virtual void clearDockRectangle(ConnectionID, DisplayNumber) = 0;

    /// By the system's number of the action. Absent where there is no such hot key, or no keys.
    virtual std::optional<SymbolicHotKey> symbolicHotKey(int identifier) const = 0;
    virtual bool isSymbolicHotKeyEnabled(int identifier) const = 0;
    /// The user's own setting, which outlives the program. False where the system refuses.
    virtual bool setSymbolicHotKeyEnabled(int identifier, bool isEnabled) = 0;
    /// As if the user had done it, whatever program has the keyboard or lies under the pointer.
    virtual void postKeyEvent(std::uint16_t keyCode, KeyAction, std::uint64_t modifierFlags) = 0;
    virtual bool canPostPointerEvents() const = 0;
    /// Of the primary button. Points, global top-left origin.
    virtual void postPointerEvent(PointerPost, Point) = 0;

    /// Moves all windows away from the desktop, or back.
    virtual void toggleShowingDesktop() = 0;

    /// Hints that some systems give: windows changed their spaces; spaces came, went or were
    /// renamed.
    Signal<> spacesOfWindowsDidChange;
    Signal<> spacesDidChange;
};

}
