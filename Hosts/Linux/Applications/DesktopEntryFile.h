#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace quorvel::xdg {

/// The fields of a desktop file that this program uses.
struct DesktopEntryFile {
    std::string name; ///< in the best of the languages asked for; valid UTF-8
    std::string icon; ///< a name or a path, as bytes
    std::string exec; ///< the command line, quotes and field codes included
    std::string startupWMClass;
    bool isHidden = false; ///< means "not installed"
    bool isNoDisplay = false; ///< not in menus, but it may have windows

    friend bool operator==(const DesktopEntryFile&, const DesktopEntryFile&) = default;
};

/// Longer values are treated as missing.
inline constexpr std::size_t kLongestEntryValue = 8192;
inline constexpr std::size_t kLargestEntryFile = 1 << 20;

/// Reads the bytes of a desktop file; absent when they describe no application. If a key occurs
/// twice, the last one is used. `languages` are locale names, the best first.
std::optional<DesktopEntryFile> parseDesktopEntry(
    std::string_view bytes, std::span<const std::string> languages);

/// The name under which the process started by the command line is likely to be known: the program
/// without its folder, or the script or class where the program is an interpreter; empty if
/// unclear.
std::string commandName(std::string_view exec);

/// Whether the program only runs other programs, so that its name does not identify the
/// application.
bool isInterpreter(std::string_view programName);

}
