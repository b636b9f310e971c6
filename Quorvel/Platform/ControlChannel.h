#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace quorvel {

/// What a second invocation of the program prints and its exit status.
struct ControlReply {
    int exitStatus = 0;
    std::string output; ///< for standard output
    std::string error; ///< for standard error
};

/// A program of the same user that stays connected; both ends send lines. Destroying it ends the
/// connection. Main thread.
class ControlSession {
public:
    virtual ~ControlSession() = default;

    /// Sends a text without a line break. Nothing is waited for: a program that does not read what
    /// it is sent loses its connection.
    virtual void send(std::string_view line) = 0;

    /// A line has come, without its end. The session may be destroyed inside the call.
    std::function<void(std::string_view line)> onLine;
    /// The other end has gone, or has broken the rules; no call follows. Never called inside
    /// `send`. The session may be destroyed inside the call.
    std::function<void()> onEnd;
};

/// Carries command lines of later invocations, by the same user on the same display, to the running
/// bar.
class ControlChannel {
public:
    /// Called on the main thread; the reply is sent after the handler returns.
    using Handler = std::function<ControlReply(const std::vector<std::string>& arguments)>;
    using SessionHandler = std::function<void(std::unique_ptr<ControlSession>)>;

    /// The one argument with which a program asks for a session. Without a handler for sessions it
    /// is a request like any other.
    static constexpr std::string_view kSessionRequest = "--settings-session";

    virtual ~ControlChannel() = default;

    virtual void setHandler(Handler) = 0;
    /// Called on the main thread.
    virtual void setSessionHandler(SessionHandler) = 0;
};

}
