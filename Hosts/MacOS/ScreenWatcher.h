#pragma once

#include "Hosts/MacOS/Observation.h"
#include "Hosts/MacOS/System/MacDisplays.h"

namespace quorvel {

/// Reads the list of screens on the main thread and passes it on, at once and after each change.
class ScreenWatcher {
public:
    explicit ScreenWatcher(MacDisplays&);

private:
    NotificationObserver m_observer;
};

}
