#include "Hosts/Posix/Invocation.h"

#include <chrono>
#include <cstdio>
#include <memory>
#include <variant>

#include <fmt/format.h>

#include "Hosts/Posix/ControlClient.h"
#include "Hosts/Posix/ControlLock.h"
#include "Hosts/Posix/ControlSocket.h"
#include "Hosts/Posix/StandardStreams.h"
#include "Quorvel/CommandLine.h"

namespace quorvel::posix {

namespace {

constexpr std::chrono::milliseconds kReplyLimit{5000};
constexpr std::chrono::milliseconds kTakeOverLimit{5000};

int print(const ControlReply& reply)
{
    bool isPrinted = write(stdout, reply.output);
    write(stderr, reply.error);
    return isPrinted ? reply.exitStatus : 1;
}

int ask(const std::vector<std::string>& request, const InvocationHost& host)
{
    std::string problem;
    auto address = host.address(problem);
    if (!address)
        return failWith(problem);
    auto reply = requestOfBar(*address, request, kReplyLimit);
    return reply ? print(*reply) : failWith("no bar is running here");
}

std::string describeOwner(const ControlAddress& address)
{
    auto owner = ControlLock::owner(address);
    return owner ? fmt::format("process {}", *owner) : std::string{"another process"};
}

std::optional<ControlLock> takeOver(const ControlAddress& address, std::string& problem)
{
    requestOfBar(address, {"--quit"}, kReplyLimit);
    auto lock = ControlLock::acquireWithin(address, kTakeOverLimit, problem);
    if (!lock && problem.empty())
        problem = fmt::format("{} does not give up the bar", describeOwner(address));
    return lock;
}

std::optional<ControlLock> becomeTheBar(
    const ControlAddress& address, const CommandLine& line, std::string& problem)
{
    auto lock = ControlLock::tryAcquire(address, problem);
    if (lock || !problem.empty())
        return lock;
    if (line.replace)
        return takeOver(address, problem);
    problem
        = fmt::format("{} is the bar here; --replace takes over from it", describeOwner(address));
    return std::nullopt;
}

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

/// Each line begins with the seconds of a clock that never jumps, and is written out at once, so
/// that the log is whole when something crashes.
void traceTo(std::FILE* file, Trace& trace)
{
    trace.setSink([file](std::string_view line) {
        std::chrono::duration<double> now = std::chrono::steady_clock::now().time_since_epoch();
        write(file, fmt::format("{:.6f} {}\n", now.count(), line));
    });
}

int runTraced(const CommandLine& line, ControlChannel& control, const InvocationHost& host)
{
    File file;
    Trace trace;
    if (line.traceFile && line.traceFile->empty()) {
        traceTo(stderr, trace);
    } else if (line.traceFile) {
        file.reset(std::fopen(line.traceFile->c_str(), "ae"));
        if (!file)
            return failWith("cannot write the trace to " + *line.traceFile);
        traceTo(file.get(), trace);
    }
    return host.run(control, trace);
}

int becomeAndRun(const CommandLine& line, const InvocationHost& host)
{
    std::string problem;
    auto address = host.address(problem);
    if (!address)
        return failWith(problem);
    auto lock = becomeTheBar(*address, line, problem);
    if (!lock)
        return failWith(problem);
    auto control = ControlSocket::open(*address, std::move(*lock), host.loop, problem);
    return control ? runTraced(line, *control, host) : failWith(problem);
}

}

int failWith(const std::string& problem)
{
    tell(problem);
    return 1;
}

int invoke(const std::vector<std::string>& arguments, const InvocationHost& host)
{
    auto parsed = CommandLine::parse(arguments);
    if (auto* reply = std::get_if<ControlReply>(&parsed))
        return print(*reply);
    auto& line = std::get<CommandLine>(parsed);
    return line.action == CommandLine::Action::ask ? ask(line.request, host)
                                                   : becomeAndRun(line, host);
}

}
