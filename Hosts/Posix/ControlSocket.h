#pragma once

#include <list>
#include <memory>
#include <string>

#include "Hosts/Posix/ControlAddress.h"
#include "Hosts/Posix/ControlLock.h"
#include "Hosts/Posix/HostLoop.h"
#include "Quorvel/Platform/ControlChannel.h"

namespace quorvel::posix {

/// The running bar's end: answers requests of later invocations on the host's loop. Whoever
/// connects must be this user; a client that sends nothing, or only part of a message, holds a
/// descriptor until enough others have connected. A socket or a lock that somebody removes is
/// created again. Main thread.
class ControlSocket final : public ControlChannel {
public:
    /// Null with a one-line problem. The lock shows that this process is the bar, so an existing
    /// socket is left over from a dead one.
    static std::unique_ptr<ControlSocket> open(
        const ControlAddress&, ControlLock, HostLoop, std::string& problem);
    ~ControlSocket() override;

    void setHandler(Handler handler) override { m_handler = std::move(handler); }
    void setSessionHandler(SessionHandler handler) override
    {
        m_sessionHandler = std::move(handler);
    }

private:
    struct Client;

    ControlSocket(const ControlAddress&, ControlLock, HostLoop);
    /// Creates the socket. False with `errno` on failure.
    bool listen();
    void acceptWhenReady();
    /// Whether the socket at the path is the one that this process created.
    bool isReachable() const;
    void restore();
    void accept();
    void read(Client&);
    void answer(Client&, const std::string& line);
    void beginSession(Client&);
    void write(Client&);
    void drop(Client&);

    const ControlAddress m_address;
    ControlLock m_lock;
    HostLoop m_loop;
    Handler m_handler;
    SessionHandler m_sessionHandler;
    UniqueFd m_listener;
    ino_t m_socketNumber = 0; ///< inode of the socket file
    std::list<Client> m_clients; ///< the oldest first
    Subscription m_listening; ///< or the pause before it continues
    Subscription m_folder;
};

}
