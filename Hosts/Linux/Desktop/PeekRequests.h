#pragma once

#include <optional>
#include <vector>

#include "Quorvel/Platform/Identifiers.h"

namespace quorvel::xdg {

/// What a display server is asked to do so that one window is seen alone. Main thread.
class PeekRequests {
public:
    virtual ~PeekRequests() = default;

    /// Whether windows can be seen through just now.
    virtual bool canFade() const = 0;
    /// These windows, and no others, are to be hardly seen; the rest as its programs have it.
    virtual void setFaded(const std::vector<WindowID>&) = 0;
    /// Brings them there, as `Peeking::fade` says.
    virtual bool fade(double by) = 0;
    /// This window lies above the others without getting the focus, and the one before is back in
    /// its place. Absent: all are in their places.
    virtual void setRaised(std::optional<WindowID>) = 0;
};

}
