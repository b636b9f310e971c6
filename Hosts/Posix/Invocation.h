#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "Hosts/Posix/ControlAddress.h"
#include "Hosts/Posix/HostLoop.h"
#include "Quorvel/CommandLine.h"
#include "Quorvel/Platform/ControlChannel.h"
#include "Quorvel/Platform/Trace.h"

namespace quorvel::posix {

/// What a host contributes on the way from the command line to the running bar.
struct InvocationHost {
    /// Absent with a one-line problem.
    std::function<std::optional<ControlAddress>(std::string& problem)> address;
    HostLoop loop;
    /// Whether the bar could run here, asked before a running one is told to exit; else with a
    /// one-line problem. May be empty, as may the next.
    std::function<bool(std::string& problem)> prepare;
    /// Makes this process the only bar of its display, even where another one has another address;
    /// that one is told to exit if `replace`. Else false with a one-line problem.
    std::function<bool(bool replace, std::string& problem)> claim;
    /// Runs the bar until it exits; returns the exit status.
    std::function<int(const CommandLine&, ControlChannel&, Trace&)> run;
};

/// Does what the arguments (without the program's name) ask for: prints something, sends a request
/// to the running bar, or becomes the bar. Returns the exit status. Main thread.
int invoke(const std::vector<std::string>& arguments, const InvocationHost&);

/// Prints "quorvel: " and the problem to standard error; returns exit status 1.
int failWith(const std::string& problem);

}
