#pragma once

#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "Quorvel/Core/LaunchPermissionsState.h"
#include "Quorvel/Platform/ControlChannel.h"

namespace quorvel {

/// What the user asked for on the command line.
struct CommandLine {
    enum class Action {
        run, ///< become the bar
        ask, ///< send `request` to the running bar and print its reply
    };

    Action action = Action::run;
    bool replace = false; ///< take over from a running bar
    /// Where the trace goes: a file, or standard error if the text is empty; absent: no trace.
    std::optional<std::string> traceFile;
    std::vector<std::string> request;
    /// For developers, where the system grants everything: what is granted as the way through the
    /// permissions begins.
    std::optional<LaunchPermissionsState> permissionsRehearsal;

    /// The request, or what to print and exit with at once (help, version, a mistake).
    static std::variant<CommandLine, ControlReply> parse(const std::vector<std::string>& arguments);
};

}
