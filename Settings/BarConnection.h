#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "Hosts/Posix/HostLoop.h"
#include "Hosts/Posix/LineConnection.h"
#include "Quorvel/Core/SettingsCoding.h"

namespace quorvel::settings {

/// The settings session with the bar of this display, on its control socket. Where there is no bar,
/// it waits until the socket changes, and tries now and then as well. Nothing blocks. Main thread.
class BarConnection {
public:
    struct Events {
        std::function<void(const SettingsNews&)> news;
        std::function<void()> lost; ///< there is no bar, or none any longer
        std::function<void()> silent; ///< it does not answer; when it does, news follow
    };

    BarConnection(posix::HostLoop, Events);
    BarConnection(const BarConnection&) = delete;
    BarConnection& operator=(const BarConnection&) = delete;

    /// What the user does; it is lost where there is no bar. The bar lets go of its own shortcuts
    /// while a recording is on, and that ends with the connection too.
    void send(const SettingsRequest&);
    /// For good: no event follows.
    void end();

private:
    void connect();
    void lose();
    void awaitAnswer();
    void retry();
    void hear(std::string_view line);

    posix::HostLoop m_loop;
    Events m_events;
    std::string m_socketPath; ///< empty where there is no place for it
    std::chrono::milliseconds m_pause; ///< before the next attempt
    std::unique_ptr<posix::LineConnection> m_session; ///< null while there is none
    std::optional<Subscription> m_folder;
    Subscription m_timer; ///< the next attempt
    Subscription m_patience; ///< the end of waiting for an answer
    bool m_isWaiting = false; ///< for an answer
};

}
