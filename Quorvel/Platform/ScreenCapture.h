#pragma once

namespace quorvel {

/// Pictures of other applications' windows. Main thread.
class ScreenCapture {
public:
    virtual ~ScreenCapture() = default;

    /// Whether the user lets this program record the screen; never asks.
    virtual bool preflightAccess() const = 0;
    /// Shows the system's own question, where there is one; true if access is given.
    virtual bool requestAccess() = 0;
};

}
