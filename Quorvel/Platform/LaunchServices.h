#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "Quorvel/Platform/Identifiers.h"
#include "Quorvel/Platform/Published.h"

namespace quorvel {

/// What a running application says of itself; what it does not say is absent.
struct ApplicationStatus {
    std::optional<std::string> bundleIdentifier;
    std::optional<std::string> label; ///< of its badge; may be empty
    std::optional<double> progress; ///< of what it is busy with, meant to be 0 to 1

    friend bool operator==(const ApplicationStatus&, const ApplicationStatus&) = default;
};

/// A window that asks for the user's attention.
struct AttentionRequest {
    WindowID window{};
    std::string bundleIdentifier;

    friend bool operator==(const AttentionRequest&, const AttentionRequest&) = default;
};

/// A program that has run. Its output is whatever bytes it wrote; one that was killed leaves none,
/// and an exit status other than 0.
struct ToolResult {
    std::int32_t exitStatus = 0;
    std::string standardOutput;
    std::string standardError;
};

/// What running applications want their user to see. Questions from any thread; they may block, so
/// none comes from the main thread.
class LaunchServices {
public:
    virtual ~LaunchServices() = default;

    /// False if this system tells nothing of all this, now or later.
    virtual bool isAvailable() const = 0;
    /// In the system's order. Several may share a bundle identifier.
    virtual std::vector<ApplicationStatus> runningApplications() const = 0;
    /// Empty too where the system knows only which applications ask, not which windows.
    virtual std::vector<AttentionRequest> attentionRequests() const = 0;
    /// Runs the program and waits for its end; if that does not come within the host's bounds of
    /// time and output, it is killed. Absent if the program cannot be started.
    virtual std::optional<ToolResult> runTool(
        const std::string& path, const std::vector<std::string>& arguments)
        = 0;

    /// A hint that some answer has changed, where the system gives one. Main thread.
    Signal<> answersMayHaveChanged;
};

}
