#include "Hosts/Posix/Invocation.h"

#include <chrono>
#include <csignal>
#include <cstdio>
#include <initializer_list>
#include <memory>
#include <variant>

#include <fmt/format.h>

#include "Hosts/Posix/ControlClient.h"
#include "Hosts/Posix/ControlLock.h"
#include "Hosts/Posix/ControlSocket.h"
#include "Hosts/Posix/StandardStreams.h"

namespace quorvel::posix {

namespace {

constexpr std::chrono::milliseconds kReplyLimit{5000};
/// How long a bar that is to go may take before it is told more firmly.
constexpr std::chrono::milliseconds kEndLimit{2000};

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

/// To the process that holds the lock: it has written itself down where only this user writes.
void signalOwner(const ControlAddress& address, std::initializer_list<int> signals)
{
    auto owner = ControlLock::owner(address);
    for (int number : signals) {
        if (owner && *owner > 1)
            kill(*owner, number);
    }
}

/// A bar that was stopped goes on and ends well; one that hangs is killed.
std::optional<ControlLock> takeOver(const ControlAddress& address, std::string& problem)
{
    requestOfBar(address, {"--quit"}, kEndLimit);
    auto lock = ControlLock::acquireWithin(address, kEndLimit, problem);
    for (auto signals : {std::initializer_list<int>{SIGTERM, SIGCONT}, {SIGKILL}}) {
        if (lock || !problem.empty())
            return lock;
        signalOwner(address, signals);
        lock = ControlLock::acquireWithin(address, kEndLimit, problem);
    }
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

bool openTrace(const CommandLine& line, File& file, Trace& trace)
{
    if (line.traceFile && line.traceFile->empty()) {
        traceTo(stderr, trace);
    } else if (line.traceFile) {
        file.reset(std::fopen(line.traceFile->c_str(), "ae"));
        if (file)
            traceTo(file.get(), trace);
    }
    return !line.traceFile || trace.isOn();
}

/// A running bar is told to go only after all that could keep this one from running.
int becomeAndRun(const CommandLine& line, const InvocationHost& host)
{
    std::string problem;
    File file;
    Trace trace;
    auto address = host.address(problem);
    if (!address)
        return failWith(problem);
    if (!openTrace(line, file, trace))
        return failWith("cannot write the trace to " + *line.traceFile);
    if (host.prepare && !host.prepare(problem))
        return failWith(problem);
    auto lock = becomeTheBar(*address, line, problem);
    if (!lock)
        return failWith(problem);
    auto control = ControlSocket::open(*address, std::move(*lock), host.loop, problem);
    if (!control || (host.claim && !host.claim(line.replace, problem)))
        return failWith(problem);
    return host.run(line, *control, trace);
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
