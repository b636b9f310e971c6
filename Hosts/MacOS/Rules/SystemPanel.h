#pragma once

#include <optional>

#include "Quorvel/Platform/Identifiers.h"

namespace quorvel {

/// The system's calls on one panel, for the rules of this folder. Main thread.
class SystemPanel {
public:
    virtual ~SystemPanel() = default;

    /// On the space that is active on its display, unless it is on the screen already.
    virtual void orderIn() = 0;
    virtual void orderOut() = 0;
    /// Nothing of it is seen, whatever its own opacity is.
    virtual void setUnseen(bool) = 0;
    /// The window server's; absent before it is ordered in for the first time.
    virtual std::optional<WindowID> number() const = 0;
    /// Asks for the keyboard. The panel counts as key at once, whatever comes of it.
    virtual void becomeKey() = 0;
    /// The keyboard goes back to the active program, and the panel stays where it is.
    virtual void resignKey() = 0;
    virtual bool isKey() const = 0;
};

}
