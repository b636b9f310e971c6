#pragma once

#include <cstdio>
#include <string_view>

namespace quorvel::posix {

/// Keeps standard input, output and error from harming the program, whoever started it. A closed
/// one is opened on /dev/null, or the next file we open would get its number and with it every
/// message. A write to a reader that has gone fails instead of ending the process; this uses a
/// handler rather than "ignore", which the programs started from the bar would inherit. Call before
/// opening anything.
void secureStandardStreams();

/// Writes all of the text at once. False if it cannot be written; nothing else happens then.
bool write(std::FILE*, std::string_view);

/// Writes "quorvel: " and the text as a line to standard error.
void tell(std::string_view);

}
