#pragma once

#include "Quorvel/Platform/Geometry.h"
#include "Quorvel/Platform/Identifiers.h"

namespace quorvel {

enum class ScreenEdge { bottom = 2 };

/// The part of a display that belongs to the bar.
struct DockRectangle {
    DisplayNumber display;
    Rect rect; ///< points, global top-left origin
};

/// The areas that the window server keeps free for the bar. Main thread.
class Reservations {
public:
    virtual ~Reservations() = default;

    /// Reserves a strip of `height` points at an edge of the space; 0 ends it. False where the
    /// system has no call for it.
    virtual bool setEdgeReservation(SpaceID, ScreenEdge, double height) = 0;
    /// Tells the window server where the bar is, so that maximised windows end above it. False
    /// where the system has no call for it, or ignored it.
    virtual bool setDockRectangle(const DockRectangle&) = 0;
    virtual void clearDockRectangle(DisplayNumber) = 0;
};

}
