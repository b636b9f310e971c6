#pragma once

#include <span>
#include <string_view>

#include "Quorvel/Core/LaunchPermissionsState.h"

namespace quorvel {

class Accessibility;
class ScreenCapture;
class Workspace;

/// Checks the two permissions, and leads the user to them. Requests report nothing: their effect
/// shows in the state, at once, later or never. Main thread.
class LaunchPermissionCenter {
public:
    using SettingsPages = std::span<const std::string_view>;

    /// All it is given outlives it.
    LaunchPermissionCenter(Accessibility&, ScreenCapture&, Workspace&);
    virtual ~LaunchPermissionCenter() = default;
    LaunchPermissionCenter(const LaunchPermissionCenter&) = delete;
    LaunchPermissionCenter& operator=(const LaunchPermissionCenter&) = delete;

    virtual LaunchPermissionsState currentState() const;
    /// Shows the system's question unless the program is trusted.
    virtual void requestAccessibility();
    virtual void requestScreenRecording();

    // Addresses in System Settings, the nearest page first.
    static SettingsPages accessibilitySettings();
    static SettingsPages screenRecordingSettings();
    /// Opens the first of them that can be opened; does nothing if none can.
    void openSettings(SettingsPages);

private:
    Accessibility& m_accessibility;
    ScreenCapture& m_screenCapture;
    Workspace& m_workspace;
};

}
