#pragma once

#include <chrono>
#include <optional>
#include <string>

#include <sys/types.h>

#include "Hosts/Posix/ControlAddress.h"
#include "Hosts/Posix/FdWatch.h"

namespace quorvel::posix {

/// Held by the one bar of a display for as long as it lives; the system takes it back from a bar
/// that crashed.
class ControlLock {
public:
    /// Absent when another process holds it, or it cannot be made (then with a problem).
    static std::optional<ControlLock> tryAcquire(const ControlAddress&, std::string& problem);
    /// Waits for a holder that is about to end.
    static std::optional<ControlLock> acquireWithin(
        const ControlAddress&, std::chrono::milliseconds, std::string& problem);
    /// Whether the file there is still the one that this process holds.
    bool isAt(const ControlAddress&) const;
    /// The process that holds it, as it wrote itself down.
    static std::optional<pid_t> owner(const ControlAddress&);

    ControlLock(ControlLock&&) noexcept = default;
    ControlLock& operator=(ControlLock&&) noexcept = default;

private:
    explicit ControlLock(UniqueFd file) : m_file(std::move(file)) { }

    UniqueFd m_file;
};

}
