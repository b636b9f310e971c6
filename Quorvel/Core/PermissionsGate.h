#pragma once

#include <functional>

#include "Quorvel/Platform/Dispatch.h"

namespace quorvel {

class Accessibility;
class ScreenCapture;

/// Waits until the user has granted what the bar cannot work without. Main thread.
///
/// Asks through the system's own questions, reports on standard error what is missing, and then
/// checks again each second.
class PermissionsGate {
public:
    PermissionsGate(Dispatch&, Accessibility&, ScreenCapture&, std::function<void()> granted);

    /// Asks and starts checking; calls `granted`, which may destroy the gate, once both are given.
    void show();

private:
    void check();

    Dispatch& m_dispatch;
    Accessibility& m_accessibility;
    ScreenCapture& m_screenCapture;
    std::function<void()> m_granted;
    WorkItem m_poll;
};

}
