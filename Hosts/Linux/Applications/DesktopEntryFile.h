#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace quorvel::xdg {

/// What this program wants to know of a desktop file.
struct DesktopEntryFile {
    std::string name; ///< in the best of the languages asked for; valid UTF-8
    std::string icon; ///< a name or a path, as bytes
    std::string exec; ///< the command line with its quotes and field codes
    std::string startupWMClass;
    bool isHidden = false; ///< stands for "not installed"
    bool isNoDisplay = false; ///< not in menus, but it has windows

    friend bool operator==(const DesktopEntryFile&, const DesktopEntryFile&) = default;
};

/// Longer values count as missing.
inline constexpr std::size_t kLongestEntryValue = 8192;
inline constexpr std::size_t kLargestEntryFile = 1 << 20;

/// Reads the bytes of a desktop file; absent when they describe no application. Of a key that is
/// there twice the last counts. `languages` are locale names, the best first.
std::optional<DesktopEntryFile> parseDesktopEntry(
    std::string_view bytes, std::span<const std::string> languages);

/// The name by which the process that the command line starts is likely to be known: the program
/// without its folder, the script or class where the program only interprets it, empty if unclear.
std::string commandName(std::string_view exec);

/// Whether the program only runs others, so that its name says nothing of the application.
bool isInterpreter(std::string_view programName);

}
