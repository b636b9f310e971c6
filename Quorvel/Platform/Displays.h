#pragma once

#include <optional>
#include <string>
#include <vector>

#include "Quorvel/Platform/Geometry.h"
#include "Quorvel/Platform/Identifiers.h"
#include "Quorvel/Platform/Published.h"

namespace quorvel {

/// One screen. Frames are points, origin at the bottom left of the first screen, y upwards.
struct Screen {
    Rect frame;
    Rect visibleFrame; ///< without the areas reserved by other panels
    double scale = 1; ///< pixels per point
    std::optional<DisplayNumber> number;

    friend bool operator==(const Screen&, const Screen&) = default;
};

/// The connected displays. Queries from any thread, the signal on the main thread.
class Displays {
public:
    virtual ~Displays() = default;

    /// The first screen defines the global coordinates. Empty while no display is connected.
    virtual std::vector<Screen> screens() const = 0;
    virtual DisplayNumber mainDisplay() const = 0;
    /// The active displays, at most `limit`.
    virtual std::vector<DisplayNumber> activeDisplays(std::size_t limit) const = 0;
    /// The identifier that survives a reconnect, in either letter case.
    virtual std::optional<std::string> identifier(DisplayNumber) const = 0;

    /// Points, global top-left origin.
    virtual Point pointerLocation() const = 0;
    virtual std::optional<DisplayNumber> displayAt(Point globalTopLeft) const = 0;

    /// Converts global top-left points to the unit that other programs of this system use.
    virtual Rect toNative(const Rect& globalTopLeft) const { return globalTopLeft; }

    /// Emitted when screens came, went, moved or changed their size, scale or visible frame.
    Signal<> parametersDidChange;
};

}
