#pragma once

#include <functional>
#include <string>
#include <vector>

namespace quorvel {

class ControlChannel;
class Trace;

/// Runs the bar with the channel that later invocations reach it by; returns the exit status.
using RunBar = std::function<int(ControlChannel&, Trace&)>;

/// What one start of the program comes to: becoming this user's bar, asking the bar that runs, or
/// printing something. Returns the exit status.
int invoke(const std::vector<std::string>& arguments, const RunBar&);

}
