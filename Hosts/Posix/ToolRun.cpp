#include "Hosts/Posix/ToolRun.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <thread>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "Hosts/Posix/FdWatch.h"

namespace quorvel::posix {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds kExitCheck{2};
constexpr char kEnvironment[] = "PATH=/usr/bin:/bin:/usr/sbin:/sbin";

struct Pipe {
    UniqueFd readEnd;
    UniqueFd writeEnd;

    explicit operator bool() const { return readEnd && writeEnd; }
};

/// Both ends stay out of programs started meanwhile, but for one started between two of the calls:
/// macOS has no call that opens a pipe closed to them.
Pipe openPipe()
{
    std::array<int, 2> ends{-1, -1};
    if (::pipe(ends.data()) != 0)
        return {};
    for (int end : ends)
        ::fcntl(end, F_SETFD, FD_CLOEXEC);
    return {UniqueFd{ends[0]}, UniqueFd{ends[1]}};
}

/// How the program is started: its streams, and signals as a fresh program expects them.
class SpawnSetup {
public:
    SpawnSetup(int output, int error)
    {
        ::posix_spawn_file_actions_init(&m_actions);
        ::posix_spawn_file_actions_addopen(&m_actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        ::posix_spawn_file_actions_adddup2(&m_actions, output, STDOUT_FILENO);
        ::posix_spawn_file_actions_adddup2(&m_actions, error, STDERR_FILENO);
        sigset_t none;
        sigset_t ignored;
        sigemptyset(&none);
        sigemptyset(&ignored);
        sigaddset(&ignored, SIGPIPE);
        ::posix_spawnattr_init(&m_attributes);
        ::posix_spawnattr_setsigmask(&m_attributes, &none);
        ::posix_spawnattr_setsigdefault(&m_attributes, &ignored);
        ::posix_spawnattr_setflags(&m_attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    }
    SpawnSetup(const SpawnSetup&) = delete;
    SpawnSetup& operator=(const SpawnSetup&) = delete;
    ~SpawnSetup()
    {
        ::posix_spawn_file_actions_destroy(&m_actions);
        ::posix_spawnattr_destroy(&m_attributes);
    }

    std::optional<pid_t> start(const std::string& path, const std::vector<std::string>& arguments)
    {
        std::vector<std::string> words{path};
        words.insert(words.end(), arguments.begin(), arguments.end());
        std::vector<char*> pointers;
        pointers.reserve(words.size() + 1);
        for (auto& word : words)
            pointers.push_back(word.data());
        pointers.push_back(nullptr);
        std::string environment{kEnvironment};
        std::array<char*, 2> variables{environment.data(), nullptr};
        pid_t pid = 0;
        if (::posix_spawn(
                &pid, path.c_str(), &m_actions, &m_attributes, pointers.data(), variables.data())
            != 0)
            return std::nullopt;
        return pid;
    }

private:
    posix_spawn_file_actions_t m_actions{};
    posix_spawnattr_t m_attributes{};
};

/// A child that has not been waited for. It does not survive this.
class Child {
public:
    explicit Child(pid_t pid) : m_pid(pid) { }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;
    ~Child()
    {
        if (m_hasEnded)
            return;
        ::kill(m_pid, SIGKILL);
        wait(0);
    }

    /// Its exit status; absent if it was killed or is still running.
    std::optional<std::int32_t> exitStatusBefore(Clock::time_point deadline)
    {
        // A program may close its streams and go on; usually its end follows at once.
        while (!wait(WNOHANG)) {
            if (Clock::now() >= deadline)
                return std::nullopt;
            std::this_thread::sleep_for(kExitCheck);
        }
        if (!WIFEXITED(m_status))
            return std::nullopt;
        return WEXITSTATUS(m_status);
    }

private:
    bool wait(int options)
    {
        pid_t ended = 0;
        do
            ended = ::waitpid(m_pid, &m_status, options);
        while (ended < 0 && errno == EINTR);
        if (ended < 0) // somebody else took its status
            m_status = SIGKILL;
        m_hasEnded = ended != 0;
        return m_hasEnded;
    }

    pid_t m_pid;
    int m_status = 0;
    bool m_hasEnded = false;
};

struct Stream {
    UniqueFd fd;
    std::string* text = nullptr;
};

/// False when there is more than the bound allows. Closes the stream at its end.
bool readSome(Stream& stream, std::size_t limit)
{
    std::array<char, 16384> buffer;
    const auto count = ::read(stream.fd.get(), buffer.data(), buffer.size());
    if (count < 0 && errno == EINTR)
        return true;
    if (count <= 0) {
        stream.fd = UniqueFd{};
        return true;
    }
    stream.text->append(buffer.data(), static_cast<std::size_t>(count));
    return stream.text->size() <= limit;
}

/// Both at once, so that a program that fills one of them does not wait for us while we wait for
/// it. False beyond a bound.
bool readToTheEnd(std::array<Stream, 2>& streams, const ToolBounds& bounds, Clock::time_point end)
{
    while (streams[0].fd || streams[1].fd) {
        // A negative descriptor is passed over.
        std::array<pollfd, 2> polled{{{streams[0].fd ? streams[0].fd.get() : -1, POLLIN, 0},
            {streams[1].fd ? streams[1].fd.get() : -1, POLLIN, 0}}};
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now());
        if (left.count() <= 0)
            return false;
        if (::poll(polled.data(), polled.size(), static_cast<int>(left.count())) < 0
            && errno != EINTR)
            return false;
        for (std::size_t i = 0; i < streams.size(); ++i) {
            if (polled[i].revents != 0 && !readSome(streams[i], bounds.output))
                return false;
        }
    }
    return true;
}

}

std::optional<ToolResult> runTool(
    const std::string& path, const std::vector<std::string>& arguments, ToolBounds bounds)
{
    auto output = openPipe();
    auto error = openPipe();
    if (!output || !error)
        return std::nullopt;
    const auto deadline = Clock::now() + bounds.time;
    const auto pid = SpawnSetup{output.writeEnd.get(), error.writeEnd.get()}.start(path, arguments);
    if (!pid)
        return std::nullopt;
    ToolResult killed{.exitStatus = SIGKILL, .standardOutput = {}, .standardError = {}};
    Child child{*pid};
    output.writeEnd = UniqueFd{};
    error.writeEnd = UniqueFd{};

    ToolResult result;
    std::array<Stream, 2> streams{{{std::move(output.readEnd), &result.standardOutput},
        {std::move(error.readEnd), &result.standardError}}};
    if (!readToTheEnd(streams, bounds, deadline))
        return killed;
    const auto status = child.exitStatusBefore(deadline);
    if (!status)
        return killed;
    result.exitStatus = *status;
    return result;
}

}
