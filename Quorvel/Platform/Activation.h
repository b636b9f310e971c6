#pragma once

#include "Quorvel/Platform/Identifiers.h"

namespace quorvel {

/// Which application is in front, as far as this program has a say in it. Main thread.
class Activation {
public:
    virtual ~Activation() = default;

    /// Whether this program is the active application.
    virtual bool isSelfActive() const = 0;
    virtual void activateSelf() = 0;
    /// Yields activation to the process and asks it to take over; false where the system refuses.
    virtual bool activateCooperatively(ProcessID) = 0;
    virtual bool activateDirectly(ProcessID) = 0;
};

}
