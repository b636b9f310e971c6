#pragma once

#include "Quorvel/Core/LaunchPermissionsState.h"
#include "Quorvel/Platform/Dispatch.h"
#include "Quorvel/Platform/Published.h"

namespace quorvel {

class LaunchPermissionCenter;

/// What has been granted so far. Systems do not announce it to the program, so it looks every
/// second. Main thread.
class PermissionsGateModel {
public:
    static constexpr Duration kPollInterval = seconds(1);

    /// Both outlive it.
    PermissionsGateModel(Dispatch&, LaunchPermissionCenter&);

    const Published<LaunchPermissionsState>& state() const { return m_state; }
    LaunchPermissionCenter& center() { return m_center; }

    /// Looks at once, and then again and again.
    void startMonitoring();
    void stopMonitoring() { m_refreshTimer = {}; }
    void refresh();

    void requestAccessibility();
    void requestScreenRecording();

private:
    Dispatch& m_dispatch;
    LaunchPermissionCenter& m_center;
    Published<LaunchPermissionsState> m_state;
    WorkItem m_refreshTimer;
};

}
