#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "Hosts/Posix/ControlAddress.h"
#include "Hosts/Posix/HostLoop.h"
#include "Quorvel/Platform/ControlChannel.h"
#include "Quorvel/Platform/Trace.h"

namespace quorvel::posix {

/// What a host adds to the road from the command line to the running bar.
struct InvocationHost {
    /// Absent with a one-line problem.
    std::function<std::optional<ControlAddress>(std::string& problem)> address;
    HostLoop loop;
    /// Whether the bar could run here, before a running one is asked to go; else with a one-line
    /// problem. May be empty, as the next.
    std::function<bool(std::string& problem)> prepare;
    /// Makes this process the only bar of what it runs on, also where another one has another
    /// address; that one is told to go if `replace`. Else false with a one-line problem.
    std::function<bool(bool replace, std::string& problem)> claim;
    /// Runs the bar to its end; returns the exit status.
    std::function<int(ControlChannel&, Trace&)> run;
};

/// Does what the arguments (without the program's name) ask for: prints something, hands a request
/// to the running bar, or becomes the bar. Returns the exit status. Main thread.
int invoke(const std::vector<std::string>& arguments, const InvocationHost&);

/// "quorvel: " and the problem, on standard error; returns exit status 1.
int failWith(const std::string& problem);

}
