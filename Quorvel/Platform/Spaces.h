#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "Quorvel/Platform/Identifiers.h"
#include "Quorvel/Platform/Published.h"

namespace quorvel {

/// One entry in a display's list of spaces, as the window server returns it.
struct ManagedSpace {
    std::optional<std::uint64_t> id64;
    std::optional<std::uint64_t> managedSpaceID;
    std::optional<std::int64_t> type;
    /// Under which the system knows the space also after the user has logged out. Absent or empty
    /// where it has none.
    std::optional<std::string> uuid = {};
};

struct ManagedDisplay {
    /// "Display Identifier": a text, a number, or missing.
    std::variant<std::monostate, std::string, std::int64_t> identifier;
    std::vector<ManagedSpace> spaces;
    std::optional<ManagedSpace> currentSpace;
};

/// Selects which windows of a space `windowsOfSpaces` returns; 2 omits those that are ordered out.
inline constexpr std::uint32_t kSpaceWindowOptions = 2;

/// Every kind of space in `spacesOfWindows`.
inline constexpr std::uint32_t kAllSpacesMask = 7;

/// The spaces of the user's displays, and the windows on them. Queries from any thread; signals on
/// the main thread. A call that the system lacks returns nothing.
class Spaces {
public:
    virtual ~Spaces() = default;

    /// Absent when the call fails or does not return a list.
    virtual std::optional<std::vector<ManagedDisplay>> managedDisplaySpaces() const = 0;
    /// Absent when the call fails.
    virtual std::optional<std::vector<WindowID>> windowsOfSpaces(
        const std::vector<SpaceID>&, std::uint32_t options) const
        = 0;
    /// For several windows at once: the union of their spaces. Absent when the call fails.
    virtual std::optional<std::vector<SpaceID>> spacesOfWindows(
        std::uint32_t mask, const std::vector<WindowID>&) const
        = 0;
    virtual SpaceID activeSpace() const = 0;
    /// The user's name for a space, on systems that have names.
    virtual std::optional<std::string> spaceName(SpaceID) const = 0;
    virtual bool displaysHaveSeparateSpaces() const = 0;

    virtual void addWindowsToSpaces(const std::vector<WindowID>&, const std::vector<SpaceID>&) = 0;
    virtual void removeWindowsFromSpaces(const std::vector<WindowID>&, const std::vector<SpaceID>&)
        = 0;
    /// Moves all windows away to show the desktop, or back.
    virtual void toggleShowingDesktop() = 0;

    /// Hints that some systems give: windows moved between spaces; spaces came, went or were
    /// renamed.
    Signal<> spacesOfWindowsDidChange;
    Signal<> spacesDidChange;
    /// All windows are moved away to show the desktop. False where the system does not tell.
    Published<bool> isShowingDesktop;
};

}
