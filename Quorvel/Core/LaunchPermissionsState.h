#pragma once

namespace quorvel {

/// What the user has granted of what the bar cannot work without.
struct LaunchPermissionsState {
    bool accessibilityGranted = false;
    bool screenRecordingGranted = false;

    bool areAllGranted() const { return accessibilityGranted && screenRecordingGranted; }
    friend bool operator==(const LaunchPermissionsState&, const LaunchPermissionsState&) = default;
};

}
