#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace quorvel::xdg {

/// What is left to a process.
struct Seclusion {
    std::size_t memory; ///< bytes that it may take beyond what it has
    unsigned seconds; ///< of a processor
    std::vector<std::string> readable; ///< folders whose files it may read
};

/// From now on this process can open no other file and no connection, start no program and write
/// nowhere but to what it has open already; an attempt fails, it does not end the process. Load all
/// libraries before. It binds the calling thread and those that come after, so call it first.
///
/// A filter leaves only the system calls that computing needs, and the folders are readable, where
/// libseccomp is installed and the kernel has Landlock (5.13). Where one of them is missing no file
/// can be opened at all; without the filter the process could still end others. False if not even
/// the kernel's limits hold.
bool secludeProcess(const Seclusion&);

}
