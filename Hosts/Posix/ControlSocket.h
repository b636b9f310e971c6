#pragma once

#include <list>
#include <memory>
#include <string>

#include "Hosts/Posix/ControlAddress.h"
#include "Hosts/Posix/ControlLock.h"
#include "Hosts/Posix/FdWatch.h"
#include "Quorvel/Platform/ControlChannel.h"

namespace quorvel::posix {

/// The running bar's end: answers requests of later invocations on the host's loop. Whoever
/// connects must be this user; a client that says nothing, or only half of something, costs a
/// descriptor until enough others have come. Main thread.
class ControlSocket final : public ControlChannel {
public:
    /// Null with a one-line problem. The lock shows that this process is the bar, so a socket that
    /// lies there is a dead one's.
    static std::unique_ptr<ControlSocket> open(
        const ControlAddress&, ControlLock, WatchFd, std::string& problem);
    ~ControlSocket() override;

    void setHandler(Handler handler) override { m_handler = std::move(handler); }

private:
    struct Client;

    ControlSocket(const ControlAddress&, ControlLock, WatchFd, UniqueFd listener);
    void accept();
    void read(Client&);
    void answer(Client&);
    void write(Client&);
    void drop(Client&);

    const std::string m_path;
    ControlLock m_lock;
    WatchFd m_watch;
    Handler m_handler;
    UniqueFd m_listener;
    std::list<Client> m_clients; ///< the oldest first
    Subscription m_listening;
};

}
