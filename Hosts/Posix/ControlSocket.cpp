#include "Hosts/Posix/ControlSocket.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>

#include <fmt/format.h>
#include <sys/socket.h>
#include <unistd.h>

#include "Hosts/Posix/ControlMessage.h"
#include "Hosts/Posix/LocalSocket.h"

namespace quorvel::posix {

namespace {

constexpr std::size_t kMostClients = 16;
constexpr int kBacklog = 16;

bool wouldBlock()
{
    return errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR;
}

}

struct ControlSocket::Client {
    explicit Client(UniqueFd fd_) : fd(std::move(fd_)) { }

    UniqueFd fd;
    MessageReader request{kLongestRequest};
    std::string reply;
    std::size_t sent = 0;
    Subscription watch; ///< last: ends before its descriptor closes
};

std::unique_ptr<ControlSocket> ControlSocket::open(
    const ControlAddress& address, ControlLock lock, WatchFd watch, std::string& problem)
{
    auto listener = makeLocalSocket();
    auto name = socketName(address.socketPath);
    unlink(address.socketPath.c_str());
    if (!listener || !setNonBlocking(listener.get())
        || bind(listener.get(), reinterpret_cast<const sockaddr*>(&name), sizeof name) != 0
        || listen(listener.get(), kBacklog) != 0) {
        problem = fmt::format("cannot listen at {}: {}", address.socketPath, std::strerror(errno));
        return nullptr;
    }
    return std::unique_ptr<ControlSocket>{
        new ControlSocket{address, std::move(lock), std::move(watch), std::move(listener)}};
}

ControlSocket::ControlSocket(
    const ControlAddress& address, ControlLock lock, WatchFd watch, UniqueFd listener)
    : m_path(address.socketPath)
    , m_lock(std::move(lock))
    , m_watch(std::move(watch))
    , m_listener(std::move(listener))
    , m_listening(m_watch(m_listener.get(), FdCondition::readable, [this] { accept(); }))
{
}

ControlSocket::~ControlSocket()
{
    unlink(m_path.c_str()); // the lock is still held, so it is ours
}

void ControlSocket::accept()
{
    UniqueFd fd{::accept(m_listener.get(), nullptr, nullptr)};
    if (!fd || !setNonBlocking(fd.get()) || !setCloseOnExec(fd.get())
        || peerUser(fd.get()) != geteuid())
        return;
    if (m_clients.size() >= kMostClients)
        drop(m_clients.front());
    auto& client = m_clients.emplace_back(std::move(fd));
    client.watch
        = m_watch(client.fd.get(), FdCondition::readable, [this, &client] { read(client); });
}

void ControlSocket::read(Client& client)
{
    std::array<char, 4096> bytes;
    auto count = ::read(client.fd.get(), bytes.data(), bytes.size());
    if (count < 0 && wouldBlock())
        return;
    if (count <= 0)
        return drop(client);
    switch (client.request.add({bytes.data(), static_cast<std::size_t>(count)})) {
    case MessageReader::State::incomplete:
        break;
    case MessageReader::State::complete:
        answer(client);
        break;
    case MessageReader::State::malformed:
        drop(client);
        break;
    }
}

void ControlSocket::answer(Client& client)
{
    auto arguments = decodeRequest(client.request.message());
    if (!arguments)
        return drop(client);
    client.watch = {};
    ControlReply reply{1, "", "quorvel: the running bar is still starting\n"};
    if (m_handler)
        reply = m_handler(*arguments);
    client.reply = encodeReply(reply);
    write(client);
}

void ControlSocket::write(Client& client)
{
    while (client.sent < client.reply.size()) {
        auto count = send(client.fd.get(), client.reply.data() + client.sent,
            client.reply.size() - client.sent, MSG_NOSIGNAL);
        if (count < 0 && wouldBlock()) {
            client.watch = m_watch(
                client.fd.get(), FdCondition::writable, [this, &client] { write(client); });
            return;
        }
        if (count < 0)
            break;
        client.sent += static_cast<std::size_t>(count);
    }
    drop(client);
}

void ControlSocket::drop(Client& client)
{
    auto found = std::ranges::find_if(m_clients, [&](auto& other) { return &other == &client; });
    if (found != m_clients.end())
        m_clients.erase(found);
}

}
