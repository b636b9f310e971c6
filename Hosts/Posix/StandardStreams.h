#pragma once

#include <cstdio>
#include <string_view>

namespace quorvel::posix {

/// Keeps standard input, output and error from harming the program, whoever started it: one that
/// is closed is opened on nothing, or the next file of ours would get its number and with it every
/// message; a write to a reader that has gone fails instead of ending the process, by a handler,
/// not by "ignore", which the programs started from the bar would inherit. Before anything is
/// opened.
void secureStandardStreams();

/// Writes all of the text at once. False, and nothing else happens, where it cannot be written.
bool write(std::FILE*, std::string_view);

/// "quorvel: " and the text, a line on standard error.
void tell(std::string_view);

}
