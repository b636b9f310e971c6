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
/// connects must be this user; a client that says nothing, or only half of something, costs a
/// descriptor until enough others have come. A socket, or a lock, that somebody removes is made
/// anew. Main thread.
class ControlSocket final : public ControlChannel {
public:
    /// Null with a one-line problem. The lock shows that this process is the bar, so a socket that
    /// lies there is a dead one's.
    static std::unique_ptr<ControlSocket> open(
        const ControlAddress&, ControlLock, HostLoop, std::string& problem);
    ~ControlSocket() override;

    void setHandler(Handler handler) override { m_handler = std::move(handler); }

private:
    struct Client;

    ControlSocket(const ControlAddress&, ControlLock, HostLoop);
    /// Makes the socket. False with `errno`.
    bool listen();
    void acceptWhenReady();
    /// Whether the socket there is the one that this process made.
    bool isReachable() const;
    void restore();
    void accept();
    void read(Client&);
    void answer(Client&);
    void write(Client&);
    void drop(Client&);

    const ControlAddress m_address;
    ControlLock m_lock;
    HostLoop m_loop;
    Handler m_handler;
    UniqueFd m_listener;
    ino_t m_socketNumber = 0; ///< the file's
    std::list<Client> m_clients; ///< the oldest first
    Subscription m_listening; ///< or the pause before it goes on
    Subscription m_folder;
};

}
