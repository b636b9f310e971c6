#pragma once

#include "Quorvel/Platform/Application.h"
#include "Quorvel/Platform/Geometry.h"

namespace quorvel {
class Dispatch;
}

namespace quorvel::x11 {

class AccessibleSurfaces;
class Connection;
class FrameIntervals;
class Monitors;
class TextShaper;
struct PanelEnvironment;

/// What every window of ours needs; all of it outlives them.
struct SurfaceContext {
    Connection& connection;
    Dispatch& dispatch;
    const Monitors& monitors;
    const PanelEnvironment& environment;
    const Published<Appearance>& appearance;
    TextShaper& shaper;
    FrameIntervals& frames;
    AccessibleSurfaces& accessible;

    /// Pixels per point.
    double scale() const;
    /// A screen frame (points, bottom-left origin) on whole pixels of the X screen.
    Rect toPixels(const Rect& screenPoints) const;
};

}
