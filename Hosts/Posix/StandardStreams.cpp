#include "Hosts/Posix/StandardStreams.h"

#include <csignal>

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

namespace quorvel::posix {

void secureStandardStreams()
{
    int file = 0;
    do
        file = open("/dev/null", O_RDWR); // the lowest number that is free
    while (file >= 0 && file <= STDERR_FILENO);
    if (file >= 0)
        close(file);

    struct sigaction action{};
    action.sa_handler = [](int) { };
    action.sa_flags = SA_RESTART;
    sigaction(SIGPIPE, &action, nullptr);
}

bool write(std::FILE* file, std::string_view text)
{
    return std::fwrite(text.data(), 1, text.size(), file) == text.size() && std::fflush(file) == 0;
}

void tell(std::string_view text)
{
    write(stderr, fmt::format("quorvel: {}\n", text));
}

}
