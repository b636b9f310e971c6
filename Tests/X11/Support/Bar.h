#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Tests/X11/Support/Process.h"
#include "Tests/X11/Support/State.h"
#include "Tests/X11/Support/XServer.h"

namespace quorvel::x11tests {

/// The built program, running. When it goes it is asked to end, and its status and whatever a
/// sanitizer wrote are judged.
class Bar {
public:
    /// Starts it and does not wait; `changes` are to the server's environment.
    explicit Bar(const XServer&, const std::vector<std::string>& arguments = {},
        const Environment& changes = {});
    Bar(const Bar&) = delete;
    Bar& operator=(const Bar&) = delete;
    ~Bar();

    /// Whether its panel is on the screen; waits for it.
    testing::AssertionResult appears();
    /// Ends it at once, as a crash does.
    void kill();
    bool isRunning() { return m_process.isRunning(); }
    Process& process() { return m_process; }
    std::string log() const;
    /// Empty, with a failure, when it does not answer.
    State state() const;
    /// Whether the state says so in the end.
    testing::AssertionResult agreesWith(Desktop&) const;

private:
    const XServer& m_server;
    std::filesystem::path m_log;
    Process m_process;
    bool m_isKilled = false;
};

/// Runs the program once with these arguments, to its end.
CommandResult runProgram(const Environment&, const std::filesystem::path& folder,
    const std::vector<std::string>& arguments);

}
