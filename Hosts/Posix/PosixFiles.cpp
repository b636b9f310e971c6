#include "Hosts/Posix/PosixFiles.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <memory>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "Hosts/Posix/AtomicWrite.h"
#include "Hosts/Posix/FdWatch.h"

namespace quorvel::posix {

namespace {

std::error_code resultOf(int returned)
{
    return returned == 0 ? std::error_code{} : std::error_code{errno, std::generic_category()};
}

bool isFolder(const std::string& path)
{
    struct stat status{};
    return ::stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

std::optional<std::string> readUpTo(int file, std::size_t limit)
{
    std::string bytes;
    char part[16384];
    for (;;) {
        auto count = ::read(file, part, sizeof part);
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            return std::nullopt;
        if (count == 0)
            return bytes;
        bytes.append(part, static_cast<std::size_t>(count));
        if (bytes.size() > limit) // it may grow while it is read
            return std::nullopt;
    }
}

}

std::error_code PosixFiles::createFolder(const std::string& path)
{
    // For the user alone, as XDG wants its folders.
    if (::mkdir(path.c_str(), 0700) == 0 || isFolder(path))
        return {};
    auto parentEnd = path.find_last_of('/');
    if (errno != ENOENT || parentEnd == std::string::npos || parentEnd == 0)
        return resultOf(-1);
    if (auto error = createFolder(path.substr(0, parentEnd)))
        return error;
    return resultOf(::mkdir(path.c_str(), 0700));
}

bool PosixFiles::exists(const std::string& path) const
{
    return ::access(path.c_str(), F_OK) == 0;
}

std::optional<std::string> PosixFiles::read(const std::string& path, std::size_t limit) const
{
    // A pipe or device that somebody put there must not block.
    UniqueFd file{::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY)};
    struct stat status{};
    if (!file || ::fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode))
        return std::nullopt;
    return readUpTo(file.get(), limit);
}

std::error_code PosixFiles::writeAtomically(const std::string& path, const std::string& bytes)
{
    return posix::writeAtomically(path, bytes);
}

std::error_code PosixFiles::revise(
    const std::string& path, std::size_t limit, const Revision& revision)
{
    return reviseAtomically(path, [&] { return revision(read(path, limit)); });
}

std::error_code PosixFiles::rename(const std::string& from, const std::string& to)
{
    // Unlike rename(), link() never replaces. Folders and some file systems have no hard links.
    if (::link(from.c_str(), to.c_str()) == 0)
        return resultOf(::unlink(from.c_str()));
    if (errno == EEXIST || errno == ENOENT)
        return resultOf(-1);
    struct stat status{};
    if (::lstat(to.c_str(), &status) == 0)
        return std::make_error_code(std::errc::file_exists);
    return resultOf(::rename(from.c_str(), to.c_str()));
}

std::error_code PosixFiles::remove(const std::string& path)
{
    return resultOf(::unlink(path.c_str()));
}

std::vector<std::string> PosixFiles::list(const std::string& folder) const
{
    std::vector<std::string> names;
    std::unique_ptr<DIR, int (*)(DIR*)> stream{::opendir(folder.c_str()), ::closedir};
    while (auto* entry = stream ? ::readdir(stream.get()) : nullptr) {
        std::string name = entry->d_name;
        if (name != "." && name != "..")
            names.push_back(std::move(name));
    }
    std::ranges::sort(names);
    return names;
}

}
