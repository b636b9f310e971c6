#pragma once

#include <cstdint>
#include <functional>

#include "Quorvel/Platform/Application.h"
#include "Quorvel/Platform/Geometry.h"

namespace quorvel {
class Dispatch;
}

namespace quorvel::xdg {
class AccessibleSurfaces;
struct CanvasTools;
struct PanelEnvironment;
}

namespace quorvel::xdg::x11 {

class ArrowCursor;
class Compositing;
class Connection;
class InputGrabs;
class Keyboard;
class Monitors;

/// What every window of ours needs; all of it outlives the windows.
struct SurfaceContext {
    Connection& connection;
    Dispatch& dispatch;
    const Monitors& monitors;
    const PanelEnvironment& environment;
    const Published<Appearance>& appearance;
    CanvasTools& tools;
    AccessibleSurfaces& accessible;
    Compositing& compositing;
    InputGrabs& grabs;
    Keyboard& keyboard;
    ArrowCursor& arrow;
    Signal<>& repaint; ///< emitted when all that is in sight has to be drawn anew

    /// For a `PointerTracker`.
    std::function<std::uint64_t(std::uint16_t state)> modifiersIn() const;
    /// Pixels per point.
    double scale() const;
    /// A screen frame (points, bottom-left origin) on whole pixels of the X screen.
    Rect toPixels(const Rect& screenPoints) const;
};

}
