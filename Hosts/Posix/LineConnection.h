#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "Hosts/Posix/ControlMessage.h"
#include "Hosts/Posix/HostLoop.h"
#include "Quorvel/Platform/ControlChannel.h"

namespace quorvel::posix {

/// A connected socket that carries lines both ways on the host's loop. Ends when the other one
/// hangs up, sends a line longer than a request may be, or leaves too much unread. Main thread.
class LineConnection final : public ControlSession {
public:
    /// What may wait to be read by the other end when one more line is sent, in bytes.
    static constexpr std::size_t kMostUnread = 1024 * 1024;

    /// The descriptor must be non-blocking. What the reader holds already came from it.
    LineConnection(UniqueFd, LineReader, HostLoop);
    LineConnection(const LineConnection&) = delete;
    LineConnection& operator=(const LineConnection&) = delete;

    void send(std::string_view line) override;

private:
    void read();
    // The caller of these may not touch this afterwards.
    void hear();
    void finish();
    void end();
    void write();
    void endLater();

    UniqueFd m_fd;
    LineReader m_reader;
    HostLoop m_loop;
    std::string m_unread;
    bool m_isWatchingWrites = false;
    bool m_isUnheard = false; ///< nothing can be written any more
    bool m_isBroken = false;
    std::shared_ptr<bool> m_isAlive = std::make_shared<bool>(true);
    Subscription m_reading; ///< these last: they end before the descriptor closes
    Subscription m_writing;
    Subscription m_later;
};

}
