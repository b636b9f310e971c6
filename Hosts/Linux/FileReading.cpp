#include "Hosts/Linux/FileReading.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quorvel::xdg {
namespace {

class RegularFile {
public:
    explicit RegularFile(const std::string& path)
        : m_descriptor(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY))
    {
    }
    ~RegularFile()
    {
        if (m_descriptor >= 0)
            ::close(m_descriptor);
    }
    RegularFile(const RegularFile&) = delete;
    RegularFile& operator=(const RegularFile&) = delete;

    /// Absent for anything but a regular file.
    std::optional<std::size_t> size() const
    {
        struct stat status;
        if (m_descriptor < 0 || ::fstat(m_descriptor, &status) != 0 || !S_ISREG(status.st_mode))
            return std::nullopt;
        return static_cast<std::size_t>(status.st_size);
    }

    std::optional<std::string> read(std::size_t count) const;

private:
    int m_descriptor;
};

ssize_t readSome(int descriptor, char* into, std::size_t size)
{
    ssize_t count;
    do
        count = ::read(descriptor, into, size);
    while (count < 0 && errno == EINTR);
    return count;
}

std::optional<std::string> RegularFile::read(std::size_t count) const
{
    std::string bytes(count, '\0');
    std::size_t filled = 0;
    while (filled < bytes.size()) {
        const auto got = readSome(m_descriptor, bytes.data() + filled, bytes.size() - filled);
        if (got < 0)
            return std::nullopt;
        if (got == 0)
            break; // it shrank meanwhile
        filled += static_cast<std::size_t>(got);
    }
    bytes.resize(filled);
    return bytes;
}

}

std::optional<std::string> readFile(const std::string& path, std::size_t limit)
{
    const RegularFile file{path};
    const auto size = file.size();
    return size && *size <= limit ? file.read(*size) : std::nullopt;
}

std::optional<std::string> readStart(const std::string& path, std::size_t count)
{
    const RegularFile file{path};
    return file.size() ? file.read(count) : std::nullopt;
}

}
