#pragma once

#include <functional>
#include <string>

namespace quorvel::xdg {

/// Tokens that are passed to a program the user starts, so that its first window may come to the
/// front. Main thread.
class LaunchTokens {
public:
    virtual ~LaunchTokens() = default;
    /// Calls back once, in a later turn.
    virtual void request(std::function<void(const std::string&)>) = 0;
};

}
