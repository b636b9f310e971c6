#pragma once

#include <functional>
#include <string>
#include <vector>

namespace quorvel {

/// What a second invocation of the program prints and exits with.
struct ControlReply {
    int exitStatus = 0;
    std::string output; ///< for standard output
    std::string error; ///< for standard error
};

/// Carries command lines of later invocations to the running bar: of this user and display only.
class ControlChannel {
public:
    /// The reply is sent after the handler returns. On the main thread.
    using Handler = std::function<ControlReply(const std::vector<std::string>& arguments)>;

    virtual ~ControlChannel() = default;

    virtual void setHandler(Handler) = 0;
};

}
