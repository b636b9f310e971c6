#include "Hosts/Posix/ControlLock.h"

#include <array>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <thread>

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quorvel::posix {

namespace {

constexpr std::chrono::milliseconds kLookAgain{5};

bool writePid(int file)
{
    auto text = fmt::format("{}\n", getpid());
    return ftruncate(file, 0) == 0
        && pwrite(file, text.data(), text.size(), 0) == static_cast<ssize_t>(text.size());
}

}

std::optional<ControlLock> ControlLock::tryAcquire(
    const ControlAddress& address, std::string& problem)
{
    UniqueFd file{open(
        address.lockPath.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK, 0600)};
    if (file && flock(file.get(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK)
        return std::nullopt;
    // The file stays when the bar goes: removing it could take it from under the next one.
    if (file && writePid(file.get()))
        return ControlLock{std::move(file)};
    problem = fmt::format("cannot lock {}: {}", address.lockPath, std::strerror(errno));
    return std::nullopt;
}

std::optional<ControlLock> ControlLock::acquireWithin(
    const ControlAddress& address, std::chrono::milliseconds limit, std::string& problem)
{
    auto end = std::chrono::steady_clock::now() + limit;
    for (;;) {
        auto lock = tryAcquire(address, problem);
        if (lock || !problem.empty() || std::chrono::steady_clock::now() >= end)
            return lock;
        std::this_thread::sleep_for(kLookAgain);
    }
}

bool ControlLock::isAt(const ControlAddress& address) const
{
    struct stat held{};
    struct stat named{};
    return fstat(m_file.get(), &held) == 0 && lstat(address.lockPath.c_str(), &named) == 0
        && held.st_dev == named.st_dev && held.st_ino == named.st_ino;
}

std::optional<pid_t> ControlLock::owner(const ControlAddress& address)
{
    UniqueFd file{open(address.lockPath.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK)};
    std::array<char, 32> text{};
    auto length = file ? read(file.get(), text.data(), text.size()) : -1;
    pid_t pid = 0;
    if (length <= 0 || std::from_chars(text.data(), text.data() + length, pid).ec != std::errc{})
        return std::nullopt;
    return pid;
}

}
