#pragma once

namespace quorvel::test {

/// Fails the test that leaks an object, releases one too often or uses one after its release.
/// Declared first in a fixture, so that it dies last.
class LeakCheck {
public:
    LeakCheck() = default;
    ~LeakCheck();
    LeakCheck(const LeakCheck&) = delete;
    LeakCheck& operator=(const LeakCheck&) = delete;
};

}
