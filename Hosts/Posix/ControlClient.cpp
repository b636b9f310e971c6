#include "Hosts/Posix/ControlClient.h"

#include <array>

#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include "Hosts/Posix/ControlMessage.h"
#include "Hosts/Posix/LocalSocket.h"

namespace quorvel::posix {

namespace {

void limitWaiting(int fd, std::chrono::milliseconds limit)
{
    timeval time{};
    time.tv_sec = limit.count() / 1000;
    time.tv_usec = limit.count() % 1000 * 1000;
    setsockopt(fd, SOL_SOCKET, SO_RCVTIMEO, &time, sizeof time);
    setsockopt(fd, SOL_SOCKET, SO_SNDTIMEO, &time, sizeof time);
}

bool sendAll(int fd, std::string_view bytes)
{
    while (!bytes.empty()) {
        auto count = send(fd, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (count <= 0)
            return false;
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
}

std::optional<ControlReply> receiveReply(int fd)
{
    MessageReader reader{kLongestReply};
    std::array<char, 16384> bytes;
    for (;;) {
        auto count = read(fd, bytes.data(), bytes.size());
        if (count <= 0)
            return std::nullopt;
        switch (reader.add({bytes.data(), static_cast<std::size_t>(count)})) {
        case MessageReader::State::incomplete:
            break;
        case MessageReader::State::complete:
            return decodeReply(reader.message());
        case MessageReader::State::malformed:
            return std::nullopt;
        }
    }
}

}

std::optional<ControlReply> requestOfBar(const ControlAddress& address,
    const std::vector<std::string>& arguments, std::chrono::milliseconds limit)
{
    auto fd = makeLocalSocket();
    auto name = socketName(address.socketPath);
    if (!fd)
        return std::nullopt;
    limitWaiting(fd.get(), limit);
    if (connect(fd.get(), reinterpret_cast<const sockaddr*>(&name), sizeof name) != 0
        || peerUser(fd.get()) != geteuid())
        return std::nullopt;
    if (sendAll(fd.get(), encodeRequest(arguments))) {
        if (auto reply = receiveReply(fd.get()))
            return reply;
    }
    return ControlReply{1, "", "quorvel: the running bar does not answer\n"};
}

}
