#include "Hosts/Posix/AtomicWrite.h"

#include <array>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <optional>
#include <string_view>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "Hosts/Posix/FdWatch.h"

namespace quorvel::posix {

namespace {

constexpr mode_t kPermissionBits = 0777;
constexpr int kMostAttempts = 1000;
constexpr int kMostLinks = 40;

std::error_code lastError()
{
    return {errno, std::generic_category()};
}

/// What the link says; absent for anything else.
std::optional<std::string> readLink(const std::string& path)
{
    std::array<char, PATH_MAX> text{};
    auto size = ::readlink(path.c_str(), text.data(), text.size());
    if (size < 0)
        return std::nullopt;
    std::string target(text.data(), static_cast<std::size_t>(size));
    bool isAbsolute = target.starts_with('/');
    return isAbsolute ? target : path.substr(0, path.find_last_of('/') + 1) + target;
}

/// The file that a link stands for, which need not be there yet: a user may keep the settings
/// elsewhere and link to them. Empty for links that lead in a circle.
std::string followLinks(std::string path)
{
    for (int links = 0; links <= kMostLinks; ++links) {
        auto next = readLink(path);
        if (!next)
            return path;
        path = std::move(*next);
    }
    return {};
}

bool isNamed(int file, const std::string& path)
{
    struct stat opened{};
    struct stat named{};
    return ::fstat(file, &opened) == 0 && ::stat(path.c_str(), &named) == 0
        && opened.st_ino == named.st_ino && opened.st_dev == named.st_dev;
}

/// False on a file system without locks.
bool lock(int file)
{
    int result;
    do
        result = ::flock(file, LOCK_EX);
    while (result != 0 && errno == EINTR);
    return result == 0;
}

/// Opened and locked. Whoever had it before may have given it the final name while this process
/// waited for the lock: then it is opened anew.
UniqueFd openNew(const std::string& path)
{
    for (int attempt = 0; attempt < kMostAttempts; ++attempt) {
        UniqueFd file{
            ::open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, 0666)};
        if (!file || !lock(file.get()) || isNamed(file.get(), path))
            return file;
    }
    errno = EBUSY; // never the file itself, which has its final name
    return UniqueFd{};
}

bool writeAll(int file, std::string_view bytes)
{
    while (!bytes.empty()) {
        auto count = ::write(file, bytes.data(), bytes.size());
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            return false;
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
}

bool flush(int file)
{
#ifdef F_FULLFSYNC
    // Here fsync() leaves the bytes in the drive's cache. Not every file system knows better.
    if (::fcntl(file, F_FULLFSYNC) == 0)
        return true;
#endif
    return ::fsync(file) == 0;
}

/// The new name, too, must survive a power cut.
void flushFolderOf(const std::string& path)
{
    auto folder = path.substr(0, path.find_last_of('/') + 1);
    UniqueFd opened{::open(folder.c_str(), O_RDONLY | O_CLOEXEC | O_DIRECTORY)};
    if (opened)
        flush(opened.get());
}

void keepPermissions(int file, const std::string& path)
{
    struct stat old{};
    if (::stat(path.c_str(), &old) == 0)
        ::fchmod(file, old.st_mode & kPermissionBits);
}

}

std::error_code writeAtomically(const std::string& path, const std::string& bytes)
{
    return reviseAtomically(path, [&] { return bytes; });
}

std::error_code reviseAtomically(
    const std::string& path, const std::function<std::optional<std::string>()>& makeBytes)
{
    const auto target = followLinks(path);
    if (target.empty())
        return std::make_error_code(std::errc::too_many_symbolic_link_levels);
    const auto temporary = target + ".new";
    auto file = openNew(temporary);
    if (!file)
        return lastError();
    keepPermissions(file.get(), target);
    const auto bytes = makeBytes();
    errno = ECANCELED;
    if (bytes && ::ftruncate(file.get(), 0) == 0 && writeAll(file.get(), *bytes)
        && flush(file.get()) && ::rename(temporary.c_str(), target.c_str()) == 0) {
        flushFolderOf(target);
        return {};
    }
    auto error = lastError();
    ::unlink(temporary.c_str());
    return error;
}

}
