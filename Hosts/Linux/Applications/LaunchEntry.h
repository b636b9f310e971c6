#pragma once

#include <optional>
#include <string>

#include "Hosts/Linux/Applications/ExecLine.h"

namespace quorvel::xdg {

class DesktopKeyFile;

/// How the application of a desktop file, or one of its actions, is started.
struct LaunchEntry {
    std::string name; ///< of the application, never empty
    std::string exec; ///< the command line; empty if there is none
    ExecFields fields;
    std::string folder; ///< where to start it
    /// The name on the session bus of an application that starts by a message to it.
    std::optional<std::string> busName;
    bool isForTerminal = false;
    /// Whether the first window can be expected to use the token up. Where a terminal passes it on
    /// to what is started in it later, that would come without the focus: the token has become old.
    bool takesToken = true;

    /// Absent if the action, which is empty for the application itself, is not among the file's.
    static std::optional<LaunchEntry> of(
        const DesktopKeyFile&, const std::string& desktopFile, const std::string& action);
};

}
