#pragma once

#include <functional>
#include <optional>
#include <string>

#include "Quorvel/Platform/Identifiers.h"
#include "Quorvel/Platform/Image.h"
#include "Quorvel/Platform/Published.h"

namespace quorvel {

enum class ActivationPolicy { regular = 0, accessory = 1, prohibited = 2 };

struct RunningApplication {
    ProcessID pid{};
    std::optional<std::string> bundleIdentifier;
    std::string localizedName;
    ActivationPolicy activationPolicy = ActivationPolicy::prohibited;
    bool isTerminated = false;
    bool isHidden = false; ///< with all its windows, by the user; where applications can be

    friend bool operator==(const RunningApplication&, const RunningApplication&) = default;
};

/// The applications that run now. Main thread.
class RunningApplications {
public:
    virtual ~RunningApplications() = default;

    /// The visitor must not call the platform: a lock may be held.
    virtual void enumerateRunningApplications(
        const std::function<void(const RunningApplication&)>& visitor) const
        = 0;
    /// Absent once the process is gone.
    virtual std::optional<RunningApplication> runningApplication(ProcessID) const = 0;
    virtual std::optional<ProcessID> frontmostApplication() const = 0;

    /// The icon that the running process shows for itself.
    virtual Image runningApplicationIcon(ProcessID) const = 0;
    /// Asks the application to end; it may ask its user first.
    virtual void requestTermination(ProcessID) = 0;

    Signal<RunningApplication> didLaunch;
    Signal<RunningApplication> didTerminate;
    Signal<RunningApplication> didActivate;
    Signal<RunningApplication> didHide;
    Signal<RunningApplication> didUnhide;
};

}
