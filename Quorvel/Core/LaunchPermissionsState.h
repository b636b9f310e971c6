#pragma once

namespace quorvel {

/// Which of the permissions that the bar cannot work without have been granted.
struct LaunchPermissionsState {
    bool accessibilityGranted = false;
    bool screenRecordingGranted = false;

    bool areAllGranted() const { return accessibilityGranted && screenRecordingGranted; }
    friend bool operator==(const LaunchPermissionsState&, const LaunchPermissionsState&) = default;
};

}
