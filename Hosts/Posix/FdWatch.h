#pragma once

#include <functional>
#include <utility>

#include <unistd.h>

#include "Quorvel/Platform/Published.h"

namespace quorvel::posix {

enum class FdCondition { readable, writable };

/// The host's way to wait for a descriptor on its main loop: calls back each time it is ready,
/// until the subscription is dropped, which may happen inside the callback.
using WatchFd = std::function<Subscription(int fd, FdCondition, std::function<void()> onReady)>;

/// Closes its descriptor.
class UniqueFd {
public:
    UniqueFd() = default;
    explicit UniqueFd(int fd) : m_fd(fd) { }
    UniqueFd(UniqueFd&& other) noexcept : m_fd(std::exchange(other.m_fd, -1)) { }
    UniqueFd& operator=(UniqueFd&& other) noexcept
    {
        std::swap(m_fd, other.m_fd);
        return *this;
    }
    ~UniqueFd()
    {
        if (m_fd >= 0)
            close(m_fd);
    }

    int get() const { return m_fd; }
    explicit operator bool() const { return m_fd >= 0; }

private:
    int m_fd = -1;
};

}
