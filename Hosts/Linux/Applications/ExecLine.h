#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quorvel::xdg {

using Arguments = std::vector<std::string>; ///< of one program, its own name first

/// The words of a command line, quotes and escapes resolved as a shell does; empty if a quote is
/// not closed, or there are no words.
Arguments wordsOf(std::string_view line);

/// The address of a file by its absolute path; what is no path is an address. Empty for a path that
/// has none.
std::string addressOf(const std::string& file);

/// What the codes in the command line of a desktop file stand for.
struct ExecFields {
    std::string name; ///< in the user's language
    std::string icon;
    std::string desktopFile; ///< its path
    bool takesOnlyURIs = false; ///< where others are given the path of a local file
};

/// The programs to start, in order, so that the application opens all of the files: several where
/// the line takes one file at a time. Codes are replaced as GIO does it, before the line is split:
/// %f %F %u %U by files, %d %D %n %N by their folders and names, %i by the icon, %c by the name, %k
/// by the desktop file, %% by one sign; others vanish. A line that has no code for files gets the
/// first file behind it. Empty for a line that is no command.
std::vector<Arguments> commandsOf(
    std::string_view exec, const ExecFields&, const std::vector<std::string>& files);

}
