#pragma once

#include <optional>

#include "Quorvel/Platform/Identifiers.h"

namespace quorvel {

/// The system's calls on one panel, as the rules in this folder need them. Main thread.
class SystemPanel {
public:
    virtual ~SystemPanel() = default;

    /// Orders it in on the active space of its display, unless it is already on the screen.
    virtual void orderIn() = 0;
    virtual void orderOut() = 0;
    /// Makes it invisible, whatever its own opacity is.
    virtual void setUnseen(bool) = 0;
    /// The window server's number; absent before it is first ordered in.
    virtual std::optional<WindowID> number() const = 0;
    /// Asks for the keyboard. The panel is the key window at once, whatever the outcome.
    virtual void becomeKey() = 0;
    /// Returns the keyboard to the active program; the panel stays where it is.
    virtual void resignKey() = 0;
    virtual bool isKey() const = 0;
    /// It is on the screen, and so is its space.
    virtual bool isVisible() const = 0;
    /// While it is the key window, keys go to what the client draws rather than to a field of the
    /// system.
    virtual void directKeysToContent() = 0;
    /// Whether keys for the panel are shown to the client before a field of the system uses them.
    virtual void setClientSeesKeysFirst(bool) = 0;
    /// Makes the program the active one, as it is with any program's window.
    virtual void activateProgram() = 0;
    /// The program before is active again, unless an ordinary window of this one is still there.
    virtual void handBackActivation() = 0;
};

}
