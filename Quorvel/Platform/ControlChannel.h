#pragma once

#include <functional>
#include <string>
#include <vector>

namespace quorvel {

/// What a second invocation of the program prints and its exit status.
struct ControlReply {
    int exitStatus = 0;
    std::string output; ///< for standard output
    std::string error; ///< for standard error
};

/// Carries command lines of later invocations, by the same user on the same display, to the running
/// bar.
class ControlChannel {
public:
    /// Called on the main thread; the reply is sent after the handler returns.
    using Handler = std::function<ControlReply(const std::vector<std::string>& arguments)>;

    virtual ~ControlChannel() = default;

    virtual void setHandler(Handler) = 0;
};

}
