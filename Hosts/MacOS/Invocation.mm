#include "Hosts/MacOS/Invocation.h"

#include <chrono>
#include <cstdio>
#include <optional>
#include <variant>

#include <fmt/format.h>

#include "Hosts/MacOS/Conversions.h"
#include "Hosts/MacOS/System/FdSource.h"
#include "Hosts/Posix/ControlAddress.h"
#include "Hosts/Posix/ControlClient.h"
#include "Hosts/Posix/ControlLock.h"
#include "Hosts/Posix/ControlSocket.h"
#include "Quorvel/CommandLine.h"
#include "Quorvel/Platform/Trace.h"

namespace quorvel {

namespace {

constexpr std::chrono::milliseconds kReplyLimit{5000};
constexpr std::chrono::milliseconds kTakeOverLimit{5000};

int print(const ControlReply& reply)
{
    fmt::print("{}", reply.output);
    fmt::print(stderr, "{}", reply.error);
    return std::fflush(stdout) == 0 ? reply.exitStatus : 1;
}

int fail(const std::string& problem)
{
    return print({1, "", fmt::format("quorvel: {}\n", problem)});
}

/// A user has one screen session, so its displays share one bar. The temporary folder is the
/// user's own here.
std::optional<posix::ControlAddress> barAddress(std::string& problem)
{
    const std::string folder = fromSystem(NSTemporaryDirectory());
    return posix::ControlAddress::forDisplay("screen", folder.c_str(), "/tmp", problem);
}

int ask(const std::vector<std::string>& request)
{
    std::string problem;
    const auto address = barAddress(problem);
    if (!address)
        return fail(problem);
    const auto reply = posix::requestOfBar(*address, request, kReplyLimit);
    return reply ? print(*reply) : fail("no bar is running");
}

std::string describeOwner(const posix::ControlAddress& address)
{
    const auto owner = posix::ControlLock::owner(address);
    return owner ? fmt::format("process {}", *owner) : "another process";
}

std::optional<posix::ControlLock> takeOver(
    const posix::ControlAddress& address, std::string& problem)
{
    posix::requestOfBar(address, {"--quit"}, kReplyLimit);
    auto lock = posix::ControlLock::acquireWithin(address, kTakeOverLimit, problem);
    if (!lock && problem.empty())
        problem = fmt::format("{} does not give up the bar", describeOwner(address));
    return lock;
}

std::optional<posix::ControlLock> becomeBar(
    const posix::ControlAddress& address, const CommandLine& line, std::string& problem)
{
    auto lock = posix::ControlLock::tryAcquire(address, problem);
    if (lock || !problem.empty())
        return lock;
    if (line.replace)
        return takeOver(address, problem);
    problem = fmt::format("{} is the bar; --replace takes over from it", describeOwner(address));
    return std::nullopt;
}

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

/// Each line is written out at once, so that the log is whole when something crashes.
void traceTo(std::FILE* file, Trace& trace)
{
    trace.setSink([file](std::string_view line) {
        fmt::print(file, "{}\n", line);
        std::fflush(file);
    });
}

int runBar(const CommandLine& line, ControlChannel& control, const RunBar& run)
{
    File file;
    Trace trace;
    if (line.traceFile && line.traceFile->empty()) {
        traceTo(stderr, trace);
    } else if (line.traceFile) {
        file.reset(std::fopen(line.traceFile->c_str(), "ae"));
        if (!file)
            return fail("cannot write the trace to " + *line.traceFile);
        traceTo(file.get(), trace);
    }
    return run(control, trace);
}

int runBar(const CommandLine& line, const RunBar& run)
{
    std::string problem;
    const auto address = barAddress(problem);
    if (!address)
        return fail(problem);
    auto lock = becomeBar(*address, line, problem);
    if (!lock)
        return fail(problem);
    const auto control = posix::ControlSocket::open(*address, std::move(*lock), watchFd, problem);
    return control ? runBar(line, *control, run) : fail(problem);
}

}

int invoke(const std::vector<std::string>& arguments, const RunBar& run)
{
    const auto parsed = CommandLine::parse(arguments);
    if (const auto* reply = std::get_if<ControlReply>(&parsed))
        return print(*reply);
    const auto& line = std::get<CommandLine>(parsed);
    return line.action == CommandLine::Action::ask ? ask(line.request) : runBar(line, run);
}

}
