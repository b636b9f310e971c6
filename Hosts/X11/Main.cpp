#include <chrono>
#include <clocale>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <variant>
#include <vector>

#include <fmt/format.h>

#include "Hosts/Posix/ControlAddress.h"
#include "Hosts/Posix/ControlClient.h"
#include "Hosts/Posix/ControlLock.h"
#include "Hosts/Posix/ControlSocket.h"
#include "Hosts/X11/Applications/DesktopEntries.h"
#include "Hosts/X11/Applications/Icons.h"
#include "Hosts/X11/Connection.h"
#include "Hosts/X11/Desktop/DesktopServices.h"
#include "Hosts/X11/FdSource.h"
#include "Hosts/X11/GLibDispatch.h"
#include "Hosts/X11/Monitors.h"
#include "Hosts/X11/PanelEnvironment.h"
#include "Hosts/X11/Surface/X11Surfaces.h"
#include "Hosts/X11/X11Application.h"
#include "Quorvel/CommandLine.h"
#include "Quorvel/Platform/Platform.h"
#include "Quorvel/Platform/Trace.h"
#include "Quorvel/Quorvel.h"

namespace quorvel::x11 {

namespace {

constexpr std::chrono::milliseconds kReplyLimit{5000};
constexpr std::chrono::milliseconds kTakeOverLimit{5000};

int fail(std::string_view problem)
{
    fmt::print(stderr, "quorvel: {}\n", problem);
    return 1;
}

int print(const ControlReply& reply)
{
    fmt::print("{}", reply.output);
    fmt::print(stderr, "{}", reply.error);
    return std::fflush(stdout) == 0 ? reply.exitStatus : 1;
}

std::optional<posix::ControlAddress> addressOfDisplay(std::string& problem)
{
    const char* display = std::getenv("DISPLAY");
    if (!display || !*display) {
        problem = "no X display (DISPLAY is not set)";
        return std::nullopt;
    }
    return posix::ControlAddress::forDisplay(
        display, std::getenv("XDG_RUNTIME_DIR"), "/tmp", problem);
}

int ask(const std::vector<std::string>& request)
{
    std::string problem;
    auto address = addressOfDisplay(problem);
    if (!address)
        return fail(problem);
    auto reply = posix::requestOfBar(*address, request, kReplyLimit);
    if (!reply)
        return fail(fmt::format("no bar is running on display {}", std::getenv("DISPLAY")));
    return print(*reply);
}

std::string describeOwner(const posix::ControlAddress& address)
{
    auto owner = posix::ControlLock::owner(address);
    return owner ? fmt::format("process {}", *owner) : std::string{"another process"};
}

/// Makes this process the bar of the display, if need be in place of another.
std::optional<posix::ControlLock> becomeTheBar(
    const posix::ControlAddress& address, bool replaces, std::string& problem)
{
    auto lock = posix::ControlLock::tryAcquire(address, problem);
    if (lock || !problem.empty())
        return lock;
    if (!replaces) {
        problem = fmt::format(
            "{} is the bar of this display; --replace takes over from it", describeOwner(address));
        return std::nullopt;
    }
    posix::requestOfBar(address, {"--quit"}, kReplyLimit);
    lock = posix::ControlLock::acquireWithin(address, kTakeOverLimit, problem);
    if (!lock && problem.empty())
        problem = fmt::format("{} does not give up the bar", describeOwner(address));
    return lock;
}

/// Where the trace's lines go. A file is appended to, line by line, so that it is whole when
/// something crashes.
class TraceFile {
public:
    bool open(const std::string& path)
    {
        m_file = path.empty() ? stderr : std::fopen(path.c_str(), "ae");
        return m_file;
    }
    ~TraceFile()
    {
        if (m_file && m_file != stderr)
            std::fclose(m_file);
    }
    void write(std::string_view line)
    {
        fmt::print(m_file, "{}\n", line);
        std::fflush(m_file);
    }

private:
    std::FILE* m_file = nullptr;
};

int runBar(Connection& connection, ControlChannel& control, Dispatch& dispatch, Trace& trace)
{
    Monitors monitors{connection};
    PanelEnvironment environment;
    DesktopEntries entries{dispatch};
    Icons icons{dispatch, entries};
    X11Application application{connection};
    X11Surfaces surfaces{connection, dispatch, monitors, environment, application.appearance()};
    DesktopServices desktop{connection, dispatch, monitors, environment, entries, icons};
    return QuorvelApp::main({
        .dispatch = dispatch,
        .accessibility = desktop.accessibility(),
        .windowServer = desktop.windowServer(),
        .displays = desktop.displays(),
        .workspace = desktop.workspace(),
        .screenCapture = desktop.screenCapture(),
        .application = application,
        .surfaces = surfaces,
        .text = surfaces.text(),
        .control = control,
        .trace = trace,
    });
}

int run(const CommandLine& line)
{
    std::string problem;
    GLibDispatch dispatch;
    auto connection = Connection::open(problem);
    if (!connection)
        return fail(problem);
    auto address = addressOfDisplay(problem);
    if (!address)
        return fail(problem);
    auto lock = becomeTheBar(*address, line.replace, problem);
    if (!lock)
        return fail(problem);
    auto control = posix::ControlSocket::open(*address, std::move(*lock), watchFd, problem);
    if (!control)
        return fail(problem);

    TraceFile file;
    Trace trace;
    if (line.traceFile) {
        if (!file.open(*line.traceFile))
            return fail(fmt::format("cannot write the trace to {}", *line.traceFile));
        trace.setSink([&file](std::string_view text) { file.write(text); });
    }
    return runBar(*connection, *control, dispatch, trace);
}

/// A server that goes must not kill us while we write to it. A handler, not "ignore", which the
/// programs started from the bar would inherit.
void surviveBrokenPipes()
{
    struct sigaction action { };
    action.sa_handler = [](int) {};
    action.sa_flags = SA_RESTART;
    sigaction(SIGPIPE, &action, nullptr);
}

int mainWith(const std::vector<std::string>& arguments)
{
    auto parsed = CommandLine::parse(arguments);
    if (auto* reply = std::get_if<ControlReply>(&parsed))
        return print(*reply);
    auto& line = std::get<CommandLine>(parsed);
    return line.action == CommandLine::Action::ask ? ask(line.request) : run(line);
}

}

}

int main(int count, char** values)
{
    std::setlocale(LC_ALL, "");
    quorvel::x11::surviveBrokenPipes();
    return quorvel::x11::mainWith({values + 1, values + count});
}
