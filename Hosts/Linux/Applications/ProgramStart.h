#pragma once

#include <string>
#include <variant>

#include <glib.h>

#include "Hosts/Linux/Applications/ExecLine.h"

namespace quorvel::xdg {

/// A program as the user starts it: it shares nothing with the bar but its environment.
struct ProgramStart {
    Arguments arguments;
    std::string folder;
    std::string token; ///< for its first window; empty: none

    /// Starts it in a session of its own, with no open file: its output goes nowhere, since the
    /// reader of ours may go, and the program with it. The answer is the process, which the caller
    /// has to wait for, or in words why there is none.
    std::variant<GPid, std::string> run() const;
};

/// Whether a process with this status never became the program it was to be: a shell, a wrapper or
/// the dynamic linker found it, or what it needs, missing.
bool neverStarted(int waitStatus);

}
