#pragma once

#include <chrono>
#include <optional>
#include <string>

#include <sys/types.h>

#include "Hosts/Posix/ControlAddress.h"
#include "Hosts/Posix/FdWatch.h"

namespace quorvel::posix {

/// Held by the one bar of a display for as long as it lives; the system releases it if the bar
/// crashes.
class ControlLock {
public:
    /// Absent when another process holds it, or it cannot be created (then with a problem).
    static std::optional<ControlLock> tryAcquire(const ControlAddress&, std::string& problem);
    /// Waits for a holder that is about to exit.
    static std::optional<ControlLock> acquireWithin(
        const ControlAddress&, std::chrono::milliseconds, std::string& problem);
    /// Whether the file at the path is still the one that this process holds.
    bool isAt(const ControlAddress&) const;
    /// The process that holds it, as recorded in the file.
    static std::optional<pid_t> owner(const ControlAddress&);

    ControlLock(ControlLock&&) noexcept = default;
    ControlLock& operator=(ControlLock&&) noexcept = default;

private:
    explicit ControlLock(UniqueFd file) : m_file(std::move(file)) { }

    UniqueFd m_file;
};

}
