#pragma once

#include <string>
#include <vector>

namespace quorvel {

/// What a drag of files from another program does to a view: it goes to the deepest view under the
/// pointer that takes files. Main thread.
class FileTarget {
public:
    virtual ~FileTarget() = default;

    virtual bool takesFiles() const { return false; }
    /// Whether files may be dropped here; else they may only rest here.
    virtual bool acceptsFiles() const { return takesFiles(); }
    virtual void filesEntered() { }
    virtual void filesExited() { }
    /// Absolute paths.
    virtual void filesDropped(const std::vector<std::string>& /*paths*/) { }
};

}
