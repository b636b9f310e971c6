#include "Settings/BarConnection.h"

#include <algorithm>
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
constexpr std::chrono::milliseconds kFirstPause = 100ms; // a new socket may not listen yet
constexpr std::chrono::milliseconds kLongestPause = 15s;
constexpr std::chrono::milliseconds kLongestSilence = 5s;

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
    auto socket = connectedTo(m_socketPath);
    if (!socket)
        return lose();
    m_folder.reset();
    m_session = std::make_unique<posix::LineConnection>(
        std::move(socket), posix::LineReader{kLongestLine}, m_loop);
    m_session->onLine = [this](std::string_view line) { hear(line); };
    m_session->onEnd = [this] { lose(); };
    auto request = posix::encodeRequest({std::string{ControlChannel::kSessionRequest}});
    request.pop_back(); // the end of the line
    m_session->send(request);
    awaitAnswer();
}

void BarConnection::awaitAnswer()
{
    if (!std::exchange(m_isWaiting, true))
        m_patience = m_loop.after(kLongestSilence, [this] { m_events.silent(); });
}

void BarConnection::lose()
{
    m_session.reset();
    m_patience = {};
    m_isWaiting = false;
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

void BarConnection::hear(std::string_view line)
{
    const auto news = decodeSettingsNews(line);
    if (!news)
        return;
    m_patience = {};
    m_isWaiting = false;
    m_pause = kFirstPause;
    m_events.news(*news);
}

void BarConnection::send(const SettingsRequest& request)
{
    if (!m_session)
        return;
    m_session->send(encodeSettingsRequest(request));
    if (!std::holds_alternative<SettingsRecording>(request))
        awaitAnswer();
}

void BarConnection::end()
{
    m_session.reset();
    m_folder.reset();
    m_timer = {};
    m_patience = {};
}

}
