#pragma once

#include "Hosts/Linux/Desktop/DesktopModel.h"
#include "Quorvel/Platform/Geometry.h"
#include "Quorvel/Platform/Identifiers.h"

namespace quorvel::xdg {

/// What a display server is asked to do with windows and spaces. Each request may be refused; the
/// model shows the outcome later. Main thread.
class DesktopRequests {
public:
    virtual ~DesktopRequests() = default;

    /// Raises, focuses and restores the window, switching to its space if necessary.
    virtual void activate(WindowID) = 0;
    /// Activates the application's most recently active window on the current space, if any.
    virtual void activateApplication(ProcessID) = 0;
    virtual void minimize(WindowID) = 0;
    virtual void close(WindowID) = 0;
    /// No longer on every space, it is on the current one.
    virtual void setSwitch(WindowID, WindowSwitch, bool isOn) = 0;
    /// Of the window including its frame, in points.
    virtual void resize(WindowID, Size) = 0;
    /// Makes this the current space; an unknown space is ignored.
    virtual void switchTo(SpaceID) = 0;
    virtual void toggleShowingDesktop() = 0;
    /// Moves the windows to the spaces that the model wants for them, as far as possible.
    virtual void sendToWantedSpaces() = 0;
};

}
