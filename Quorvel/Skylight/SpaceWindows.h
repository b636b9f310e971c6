#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Quorvel/Platform/Displays.h"
#include "Quorvel/Platform/WindowServer.h"

namespace quorvel {

class ScreenLog;

/// The type of a space that belongs to one full-screen window.
inline constexpr std::int64_t kFullscreenSpaceType = 4;

/// Operations on the window server's spaces. Stateless; any thread. Anything the window server does
/// not answer becomes an empty result.
class SpaceWindows {
public:
    struct Info {
        int displayIndex = 0; ///< in the window server's list of displays
        std::string displayIdentifier;
        int spaceIndex = 0; ///< in its display's list of spaces
        SpaceID spaceID{};
        std::int64_t spaceType = 0;
        std::string uuid = {}; ///< empty where the system has none for this space

        friend bool operator==(const Info&, const Info&) = default;
    };

    SpaceWindows(WindowServer& windowServer, Displays& displays)
        : m_windowServer(windowServer)
        , m_displays(displays)
    {
    }

    /// What the window server says about its spaces at one moment.
    struct Answer {
        /// Every space of every display, in display order, then space order.
        std::vector<Info> spaces;
        /// The current space of each display; displays whose space cannot be read are omitted.
        std::vector<SpaceID> shown;
    };

    Answer ask() const;
    std::vector<Info> getSpaces() const { return ask().spaces; }
    std::vector<SpaceID> getActiveSpaceIDs() const { return ask().shown; }

    /// Puts the window on this space and removes it from every other; it is never on none.
    void moveWindowExclusively(WindowID, SpaceID) const;
    /// Reserves a strip at the bottom of the space for the bar; `height` in points, 0 ends it. The
    /// outcome is written to the log a little later. False where the system has no call for it.
    bool setBottomEdgeReservation(SpaceID, double height, ScreenLog&) const;

    /// Compares identifiers ignoring letter case; "MAIN" and "PRIMARY" are the main display.
    std::optional<DisplayNumber> displayNumber(std::string_view identifier) const;
    std::optional<Screen> screen(
        std::string_view displayIdentifier, const std::vector<Screen>& screens) const;
    /// The top of the main display's screen, in points from the bottom; 0 when it is not in the
    /// list.
    double primaryScreenMaxY(const std::vector<Screen>& screens) const;

private:
    WindowServer& m_windowServer;
    Displays& m_displays;
};

/// Whether the space is one of these, which displays show.
bool isShown(SpaceID, const std::vector<SpaceID>& shown);

std::string normalizedDisplayIdentifier(std::string_view);

}
