#include "Hosts/X11/Applications/FileReading.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quorvel::x11 {
namespace {

class Descriptor {
public:
    explicit Descriptor(int number) : m_number(number) { }
    ~Descriptor()
    {
        if (m_number >= 0)
            ::close(m_number);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int number() const { return m_number; }

private:
    int m_number;
};

ssize_t readSome(int descriptor, char* into, std::size_t size)
{
    ssize_t count;
    do
        count = ::read(descriptor, into, size);
    while (count < 0 && errno == EINTR);
    return count;
}

}

std::optional<std::string> readFile(const std::string& path, std::size_t limit)
{
    const Descriptor file{::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY)};
    struct stat status;
    if (file.number() < 0 || ::fstat(file.number(), &status) != 0 || !S_ISREG(status.st_mode))
        return std::nullopt;
    if (static_cast<std::size_t>(status.st_size) > limit)
        return std::nullopt;

    std::string bytes(static_cast<std::size_t>(status.st_size), '\0');
    std::size_t filled = 0;
    while (filled < bytes.size()) {
        const auto count = readSome(file.number(), bytes.data() + filled, bytes.size() - filled);
        if (count < 0)
            return std::nullopt;
        if (count == 0)
            break; // it shrank meanwhile
        filled += static_cast<std::size_t>(count);
    }
    bytes.resize(filled);
    return bytes;
}

}
