#include "Settings/BarConnection.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <utility>

#include <sys/socket.h>
#include <unistd.h>

#include "Hosts/Posix/ControlAddress.h"
#include "Hosts/Posix/ControlMessage.h"
#include "Hosts/Posix/LocalSocket.h"

namespace quorvel::settings {

namespace {

using namespace std::chrono_literals;

constexpr std::size_t kLongestLine = 2 * 1024 * 1024;
constexpr std::size_t kMostUnsent = 256 * 1024; // by then the bar has not read for long
constexpr std::chrono::milliseconds kFirstPause = 100ms; // a new socket may not listen yet
constexpr std::chrono::milliseconds kLongestPause = 15s;
constexpr std::chrono::milliseconds kLongestSilence = 10s; // before the first message

std::string socketOfDisplay()
{
    const char* display = std::getenv("DISPLAY");
    std::string problem;
    const auto address = posix::ControlAddress::forDisplay(
        display ? display : "", std::getenv("XDG_RUNTIME_DIR"), "/tmp", problem);
    return address ? address->socketPath : std::string{};
}

/// Empty where no bar of this user listens. A local socket is connected at once or not at all.
posix::UniqueFd connectedTo(const std::string& path)
{
    auto fd = posix::makeLocalSocket();
    const auto name = posix::socketName(path);
    if (path.empty() || !fd || !posix::setNonBlocking(fd.get())
        || ::connect(fd.get(), reinterpret_cast<const sockaddr*>(&name), sizeof name) != 0
        || posix::peerUser(fd.get()) != geteuid())
        return {};
    return fd;
}

bool wouldBlock()
{
    return errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR;
}

}

BarConnection::BarConnection(posix::HostLoop loop, Events events)
    : m_loop(std::move(loop))
    , m_events(std::move(events))
    , m_pause(kFirstPause)
{
    m_timer = m_loop.after(0ms, [this] { connect(); });
}

void BarConnection::connect()
{
    m_socketPath = socketOfDisplay();
    m_socket = connectedTo(m_socketPath);
    if (!m_socket)
        return lose();
    m_folder.reset();
    m_lines.emplace(kLongestLine);
    m_timer = m_loop.after(kLongestSilence, [this] { lose(); });
    m_readable = m_loop.watchFd(m_socket.get(), posix::FdCondition::readable, [this] { read(); });
    m_unsent = posix::encodeRequest({"--settings-session"});
    write();
}

void BarConnection::lose()
{
    m_readable = {};
    m_writable = {};
    m_socket = {};
    m_unsent.clear();
    if (!m_folder && !m_socketPath.empty()) {
        const auto folder = m_socketPath.substr(0, m_socketPath.rfind('/'));
        m_folder = m_loop.watchFolder(folder, [this] {
            m_pause = kFirstPause;
            retry();
        });
    }
    retry();
    m_events.lost();
}

void BarConnection::retry()
{
    m_timer = m_loop.after(m_pause, [this] { connect(); });
    m_pause = std::min(2 * m_pause, kLongestPause);
}

void BarConnection::read()
{
    std::array<char, 16384> bytes;
    const auto count = ::read(m_socket.get(), bytes.data(), bytes.size());
    if (count < 0 && wouldBlock())
        return;
    const bool isWell = count > 0
        && m_lines->add({bytes.data(), static_cast<std::size_t>(count)},
            [this](std::string_view line) { takeLine(line); });
    if (!isWell)
        lose();
}

void BarConnection::takeLine(std::string_view line)
{
    const auto news = m_socket ? decodeSettingsNews(line) : std::nullopt;
    if (!news)
        return;
    m_timer = {};
    m_pause = kFirstPause;
    m_events.news(*news);
}

void BarConnection::send(const SettingsRequest& request)
{
    if (!m_socket)
        return;
    m_unsent += encodeSettingsRequest(request) + '\n';
    if (m_unsent.size() > kMostUnsent)
        return lose();
    write();
}

void BarConnection::write()
{
    m_writable = {};
    while (!m_unsent.empty()) {
        const auto count = ::send(m_socket.get(), m_unsent.data(), m_unsent.size(), MSG_NOSIGNAL);
        if (count < 0 && wouldBlock()) {
            m_writable
                = m_loop.watchFd(m_socket.get(), posix::FdCondition::writable, [this] { write(); });
            return;
        }
        if (count < 0)
            return; // its end is read as well
        m_unsent.erase(0, static_cast<std::size_t>(count));
    }
}

}
