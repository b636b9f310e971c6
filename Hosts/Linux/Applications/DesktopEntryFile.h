#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quorvel::xdg {

class DesktopKeyFile;

/// What a desktop file says of its application's windows and of how they are shown.
struct DesktopEntryFile {
    std::string name; ///< in the user's language
    std::string icon; ///< a name or a path
    std::string exec; ///< the command line, quotes and field codes included
    std::string startupWMClass;
    bool isHidden = false; ///< means "not installed"
    bool isNoDisplay = false; ///< not in menus, but it may have windows

    static DesktopEntryFile of(const DesktopKeyFile&);
    /// Absent for anything but the desktop file of an application.
    static std::optional<DesktopEntryFile> read(const std::string& path);

    friend bool operator==(const DesktopEntryFile&, const DesktopEntryFile&) = default;
};

/// The name under which the process started by the command line is likely to be known: the program
/// without its folder, or the script or class where the program is an interpreter; empty if
/// unclear.
std::string commandName(std::string_view exec);

/// Whether the program only runs other programs, so that its name does not identify the
/// application.
bool isInterpreter(std::string_view programName);

}
