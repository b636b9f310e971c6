#include "Tests/X11/Support/Bar.h"

#include <csignal>

#include "Hosts/Posix/ControlAddress.h"
#include "Hosts/Posix/ControlClient.h"
#include "Tests/X11/Support/Eventually.h"

namespace quorvel::x11tests {

namespace {

std::vector<std::string> commandLine(const std::vector<std::string>& arguments)
{
    std::vector<std::string> command{QUORVEL_PROGRAM};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return command;
}

/// What is installed on this machine, and what comes while the bar runs, is nothing to it.
Environment withoutInstalledFiles(const XServer& server, const Environment& changes)
{
    auto environment = server.environment();
    environment["XDG_DATA_DIRS"] = environment["XDG_CONFIG_DIRS"] = server.folder() / "system";
    for (const auto& [name, value] : changes)
        environment[name] = value;
    return environment;
}

std::filesystem::path freshLog(const std::filesystem::path& folder)
{
    static int count = 0;
    return folder / ("bar-" + std::to_string(++count) + ".log");
}

/// What the running bar answers; a process for each question would cost more than the bar itself.
ControlReply askForState(const XServer& server)
{
    std::string problem;
    const auto& folder = server.environment().at("XDG_RUNTIME_DIR");
    const auto address
        = posix::ControlAddress::forDisplay(server.display(), folder.c_str(), folder, problem);
    const auto reply = address ? posix::requestOfBar(*address, {"--state"}, kWatchdog)
                               : std::optional<ControlReply>{};
    return reply.value_or(ControlReply{1, "", "no bar listens: " + problem});
}

bool hasSanitizerReport(const std::string& log)
{
    for (const auto* mark : {"Sanitizer", "runtime error:"}) {
        if (log.find(mark) != std::string::npos)
            return true;
    }
    return false;
}

}

Bar::Bar(
    const XServer& server, const std::vector<std::string>& arguments, const Environment& changes)
    : m_server(server)
    , m_log(freshLog(server.folder()))
    , m_process(commandLine(arguments), withoutInstalledFiles(server, changes), Outputs{{}, m_log})
{
}

Bar::~Bar()
{
    if (!m_isKilled) {
        m_process.signal(SIGTERM);
        const auto status = m_process.waitForEnd();
        EXPECT_TRUE(status) << "the bar does not end";
        EXPECT_EQ(status.value_or(0), 0) << log();
    }
    EXPECT_FALSE(hasSanitizerReport(log())) << log();
}

testing::AssertionResult Bar::appears()
{
    const auto isVisible = [this] {
        const auto answer = askForState(m_server);
        if (answer.exitStatus != 0)
            return testing::AssertionFailure() << "no state: " << answer.error << log();
        if (!State::parse(answer.output).panel().isVisible)
            return testing::AssertionFailure() << "no visible panel: " << log();
        return testing::AssertionSuccess();
    };
    return eventually(isVisible);
}

void Bar::kill()
{
    m_isKilled = true;
    m_process.signal(SIGKILL);
    EXPECT_TRUE(m_process.waitForEnd()) << "the bar does not end";
}

std::string Bar::log() const
{
    return readFile(m_log);
}

State Bar::state() const
{
    const auto answer = askForState(m_server);
    EXPECT_EQ(answer.exitStatus, 0) << answer.error << log();
    return answer.exitStatus == 0 ? State::parse(answer.output) : State{};
}

testing::AssertionResult Bar::agreesWith(Desktop& desktop) const
{
    return eventually([&] { return agrees(state(), desktop); });
}

CommandResult runProgram(const Environment& environment, const std::filesystem::path& folder,
    const std::vector<std::string>& arguments)
{
    const Outputs outputs{folder / "command.out", folder / "command.err"};
    Process process(commandLine(arguments), environment, outputs);
    const auto status = process.waitForEnd();
    return {status, readFile(outputs.output), readFile(outputs.error)};
}

}
