#pragma once

#include <functional>
#include <string>

namespace quorvel::xdg {

/// What a program that the user starts brings along, so that its first window may come to the
/// front. Main thread.
class LaunchTokens {
public:
    virtual ~LaunchTokens() = default;
    /// Answered once, in a later turn.
    virtual void request(std::function<void(const std::string&)>) = 0;
};

}
