#include "Hosts/Posix/LineConnection.h"

#include <array>
#include <cerrno>
#include <utility>

#include <sys/socket.h>
#include <unistd.h>

#include "Hosts/Posix/LocalSocket.h"

namespace quorvel::posix {

LineConnection::LineConnection(UniqueFd fd, LineReader reader, HostLoop loop)
    : m_fd(std::move(fd))
    , m_reader(std::move(reader))
    , m_loop(std::move(loop))
    , m_reading(m_loop.watchFd(m_fd.get(), FdCondition::readable, [this] { read(); }))
    // Lines that came with the request, once there is somebody to hear them.
    , m_later(m_loop.after(std::chrono::milliseconds{0}, [this] { hear(); }))
{
}

void LineConnection::read()
{
    std::array<char, 4096> bytes;
    auto count = ::read(m_fd.get(), bytes.data(), bytes.size());
    if (count < 0 && wouldBlock())
        return;
    if (count <= 0)
        return finish();
    m_reader.add({bytes.data(), static_cast<std::size_t>(count)});
    hear();
}

void LineConnection::finish()
{
    std::weak_ptr<bool> alive = m_isAlive;
    hear(); // lines that came with the request
    if (!alive.expired() && !m_isBroken)
        end();
}

void LineConnection::hear()
{
    std::weak_ptr<bool> alive = m_isAlive;
    while (!m_isBroken && onLine) {
        auto line = m_reader.next();
        if (!line)
            break;
        auto tell = onLine; // it may go with this, while it runs
        tell(*line);
        if (alive.expired())
            return;
    }
    if (!m_isBroken && m_reader.isTooLong())
        end();
}

void LineConnection::send(std::string_view line)
{
    if (m_isBroken || m_isUnheard)
        return;
    if (m_unread.size() > kMostUnread)
        return endLater();
    bool isWaiting = !m_unread.empty();
    m_unread.append(line);
    m_unread.push_back('\n');
    if (!isWaiting)
        write();
}

void LineConnection::write()
{
    auto count = ::send(m_fd.get(), m_unread.data(), m_unread.size(), MSG_NOSIGNAL);
    if (count < 0 && !wouldBlock()) {
        // What the other one said before it went still counts: its end is read as well.
        m_isUnheard = true;
        m_unread.clear();
    }
    if (count > 0)
        m_unread.erase(0, static_cast<std::size_t>(count));
    bool isWatching = std::exchange(m_isWatchingWrites, !m_unread.empty());
    if (m_unread.empty())
        m_writing = {};
    else if (!isWatching)
        m_writing = m_loop.watchFd(m_fd.get(), FdCondition::writable, [this] { write(); });
}

void LineConnection::endLater()
{
    m_isBroken = true;
    m_reading = {};
    m_writing = {};
    m_later = m_loop.after(std::chrono::milliseconds{0}, [this] { end(); });
}

void LineConnection::end()
{
    m_isBroken = true;
    m_reading = {};
    m_writing = {};
    m_later = {};
    if (auto tell = std::exchange(onEnd, nullptr))
        tell();
}

}
