#include "Hosts/Posix/LocalSocket.h"

#include <algorithm>
#include <cerrno>

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace quorvel::posix {

UniqueFd makeLocalSocket()
{
    UniqueFd fd{socket(AF_UNIX, SOCK_STREAM, 0)};
    if (fd && !setCloseOnExec(fd.get()))
        return {};
    return fd;
}

sockaddr_un socketName(const std::string& path)
{
    sockaddr_un name{};
    name.sun_family = AF_UNIX;
    path.copy(name.sun_path, sizeof(name.sun_path) - 1);
    return name;
}

bool setNonBlocking(int fd)
{
    int flags = fcntl(fd, F_GETFL);
    return flags >= 0 && fcntl(fd, F_SETFL, flags | O_NONBLOCK) == 0;
}

bool setCloseOnExec(int fd)
{
    return fcntl(fd, F_SETFD, FD_CLOEXEC) == 0;
}

bool wouldBlock()
{
    return errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR;
}

std::optional<uid_t> peerUser(int fd)
{
#ifdef __linux__
    ucred credentials{};
    socklen_t length = sizeof credentials;
    if (getsockopt(fd, SOL_SOCKET, SO_PEERCRED, &credentials, &length) != 0)
        return std::nullopt;
    return credentials.uid;
#else
    uid_t user = 0;
    gid_t group = 0;
    if (getpeereid(fd, &user, &group) != 0)
        return std::nullopt;
    return user;
#endif
}

}
