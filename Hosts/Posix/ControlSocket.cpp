#include "Hosts/Posix/ControlSocket.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>

#include <fmt/format.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include "Hosts/Posix/ControlMessage.h"
#include "Hosts/Posix/LineConnection.h"
#include "Hosts/Posix/LocalSocket.h"

namespace quorvel::posix {

namespace {

constexpr std::size_t kMostClients = 16;
constexpr int kBacklog = 16;
constexpr std::chrono::milliseconds kPause{250};

/// Whether a descriptor or the memory for one was lacking.
bool hasNoRoom()
{
    return errno == EMFILE || errno == ENFILE || errno == ENOBUFS || errno == ENOMEM;
}

/// 0 where there is no file.
ino_t fileNumber(const std::string& path)
{
    struct stat about{};
    return lstat(path.c_str(), &about) == 0 ? about.st_ino : 0;
}

std::string folderOf(const std::string& path)
{
    return path.substr(0, path.rfind('/'));
}

}

struct ControlSocket::Client {
    explicit Client(UniqueFd fd_) : fd(std::move(fd_)) { }

    UniqueFd fd;
    LineReader request{kLongestRequest};
    std::string reply;
    std::size_t sent = 0;
    Subscription watch; ///< last: ends before its descriptor closes
};

std::unique_ptr<ControlSocket> ControlSocket::open(
    const ControlAddress& address, ControlLock lock, HostLoop loop, std::string& problem)
{
    std::unique_ptr<ControlSocket> socket{
        new ControlSocket{address, std::move(lock), std::move(loop)}};
    if (socket->listen())
        return socket;
    problem = fmt::format("cannot listen at {}: {}", address.socketPath, std::strerror(errno));
    return nullptr;
}

ControlSocket::ControlSocket(const ControlAddress& address, ControlLock lock, HostLoop loop)
    : m_address(address)
    , m_lock(std::move(lock))
    , m_loop(std::move(loop))
{
}

ControlSocket::~ControlSocket()
{
    if (isReachable())
        unlink(m_address.socketPath.c_str());
}

bool ControlSocket::listen()
{
    const auto& path = m_address.socketPath;
    m_folder = {}; // the folder may be another one of the same name
    m_folder = m_loop.watchFolder(folderOf(path), [this] {
        if (!isReachable())
            restore();
    });
    auto listener = makeLocalSocket();
    auto name = socketName(path);
    unlink(path.c_str()); // the lock is held, so it is a dead bar's
    if (!listener || !setNonBlocking(listener.get())
        || bind(listener.get(), reinterpret_cast<const sockaddr*>(&name), sizeof name) != 0
        || ::listen(listener.get(), kBacklog) != 0)
        return false;
    m_listening = {}; // before its descriptor is closed
    m_listener = std::move(listener);
    m_socketNumber = fileNumber(path);
    acceptWhenReady();
    return true;
}

void ControlSocket::acceptWhenReady()
{
    m_listening = m_loop.watchFd(m_listener.get(), FdCondition::readable, [this] { accept(); });
}

bool ControlSocket::isReachable() const
{
    return m_listener && fileNumber(m_address.socketPath) == m_socketNumber;
}

void ControlSocket::restore()
{
    if (!makePrivateFolder(folderOf(m_address.socketPath)))
        return;
    if (!m_lock.isAt(m_address)) {
        std::string problem;
        auto lock = ControlLock::tryAcquire(m_address, problem);
        if (!lock)
            return; // another bar has it by now
        m_lock = std::move(*lock);
    }
    listen();
}

void ControlSocket::accept()
{
    UniqueFd fd{::accept(m_listener.get(), nullptr, nullptr)};
    if (!fd && hasNoRoom()) {
        // The client stays in the queue, and with it the listener ready.
        m_listening = m_loop.after(kPause, [this] { acceptWhenReady(); });
        return;
    }
    if (!fd || !setNonBlocking(fd.get()) || !setCloseOnExec(fd.get())
        || peerUser(fd.get()) != geteuid())
        return;
    if (m_clients.size() >= kMostClients)
        drop(m_clients.front());
    auto& client = m_clients.emplace_back(std::move(fd));
    client.watch
        = m_loop.watchFd(client.fd.get(), FdCondition::readable, [this, &client] { read(client); });
}

void ControlSocket::read(Client& client)
{
    std::array<char, 4096> bytes;
    auto count = ::read(client.fd.get(), bytes.data(), bytes.size());
    if (count < 0 && wouldBlock())
        return;
    if (count <= 0)
        return drop(client);
    client.request.add({bytes.data(), static_cast<std::size_t>(count)});
    if (auto line = client.request.next())
        answer(client, *line);
    else if (client.request.isTooLong())
        drop(client);
}

void ControlSocket::answer(Client& client, const std::string& line)
{
    auto arguments = decodeRequest(line);
    if (!arguments)
        return drop(client);
    client.watch = {};
    if (m_sessionHandler && arguments->size() == 1 && arguments->front() == kSessionRequest)
        return beginSession(client);
    if (client.request.hasMore())
        return drop(client);
    ControlReply reply{1, "", "quorvel: the running bar is still starting\n"};
    if (m_handler)
        reply = m_handler(*arguments);
    client.reply = encodeReply(reply);
    write(client);
}

void ControlSocket::beginSession(Client& client)
{
    auto session
        = std::make_unique<LineConnection>(std::move(client.fd), std::move(client.request), m_loop);
    drop(client);
    m_sessionHandler(std::move(session));
}

void ControlSocket::write(Client& client)
{
    while (client.sent < client.reply.size()) {
        auto count = send(client.fd.get(), client.reply.data() + client.sent,
            client.reply.size() - client.sent, MSG_NOSIGNAL);
        if (count < 0 && wouldBlock()) {
            client.watch = m_loop.watchFd(
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
