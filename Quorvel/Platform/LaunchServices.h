#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "Quorvel/Platform/Identifiers.h"
#include "Quorvel/Platform/Published.h"

namespace quorvel {

/// What a running application says about itself; anything it does not say is absent.
struct ApplicationStatus {
    std::optional<std::string> bundleIdentifier;
    std::optional<std::string> label; ///< of its badge; may be empty
    std::optional<double> progress; ///< of its current work, meant to be 0 to 1

    friend bool operator==(const ApplicationStatus&, const ApplicationStatus&) = default;
};

/// A window that asks for the user's attention.
struct AttentionRequest {
    WindowID window{};
    std::string bundleIdentifier;

    friend bool operator==(const AttentionRequest&, const AttentionRequest&) = default;
};

/// The result of a program. The output is raw bytes; a program that was killed leaves none, and an
/// exit status other than 0.
struct ToolResult {
    std::int32_t exitStatus = 0;
    std::string standardOutput;
    std::string standardError;
};

/// What running applications want to show their user. Questions from any thread but the main one,
/// since they may block.
class LaunchServices {
public:
    virtual ~LaunchServices() = default;

    /// False if this system never provides any of this.
    virtual bool isAvailable() const = 0;
    /// In the system's order. Several may share a bundle identifier.
    virtual std::vector<ApplicationStatus> runningApplications() const = 0;
    /// Also empty where the system knows only which applications ask, not which windows.
    virtual std::vector<AttentionRequest> attentionRequests() const = 0;
    /// Runs the program and waits for its end; it is killed if it exceeds the host's limits of time
    /// and output. Absent if the program cannot be started.
    virtual std::optional<ToolResult> runTool(
        const std::string& path, const std::vector<std::string>& arguments)
        = 0;

    /// A hint that some answer has changed, where the system provides one. Main thread.
    Signal<> answersMayHaveChanged;
};

}
