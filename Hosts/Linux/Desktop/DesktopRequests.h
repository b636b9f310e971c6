#pragma once

#include "Quorvel/Platform/Geometry.h"
#include "Quorvel/Platform/Identifiers.h"

namespace quorvel::xdg {

/// What a display server is asked to do with windows and spaces. Each may be refused: what came of
/// it, the model says later. Main thread.
class DesktopRequests {
public:
    virtual ~DesktopRequests() = default;

    /// Raises, focuses and restores the window, with a switch to its space if need be.
    virtual void activate(WindowID) = 0;
    /// Activates the window of the application that was active last on the current space, if any.
    virtual void activateApplication(ProcessID) = 0;
    virtual void minimize(WindowID) = 0;
    virtual void close(WindowID) = 0;
    /// Of the window with its frame, in points.
    virtual void resize(WindowID, Size) = 0;
    /// Makes the space the current one; a space that is not there is ignored.
    virtual void switchTo(SpaceID) = 0;
    virtual void toggleShowingDesktop() = 0;
    /// The spaces that the model wants for its windows, as far as they can be had.
    virtual void sendToWantedSpaces() = 0;
};

}
