#pragma once

#include "Quorvel/Core/LaunchPermissionCenter.h"

namespace quorvel {

/// Plays the part of a system that has granted this much, and grants whatever it is asked for: to
/// see the way through the permissions where there is nothing to grant. Main thread.
class PermissionsRehearsal final : public LaunchPermissionCenter {
public:
    PermissionsRehearsal(LaunchPermissionsState state, Accessibility& accessibility,
        ScreenCapture& screenCapture, Workspace& workspace)
        : LaunchPermissionCenter(accessibility, screenCapture, workspace)
        , m_state(state)
    {
    }

    LaunchPermissionsState currentState() const override { return m_state; }
    void requestAccessibility() override { m_state.accessibilityGranted = true; }
    void requestScreenRecording() override { m_state.screenRecordingGranted = true; }

private:
    LaunchPermissionsState m_state;
};

}
