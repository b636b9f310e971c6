#pragma once

#include "Quorvel/Platform/Published.h"

namespace quorvel {

/// The framework that keeps the program up to date. Checking now and then, and all that the user
/// sees of it, are its own affair. Main thread.
class Updater {
public:
    virtual ~Updater() = default;

    /// Begins to check in the background. Once; does nothing if it cannot start.
    virtual void start() = 0;
    /// Checks now, as the user asked, and shows the outcome.
    virtual void checkForUpdates() = 0;
    /// True while a check may be asked for; right from the start.
    virtual const Published<bool>& canCheckForUpdates() const = 0;
};

}
