#include "Hosts/Linux/Pictures/DecoderProcess.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include "Hosts/Linux/Pictures/DecoderMessages.h"
#include "Hosts/Linux/Pictures/PictureDecoding.h"

namespace quorvel::xdg {
namespace {

/// One request and its answer, within a time limit.
class Transfer {
public:
    Transfer(int socket, Duration limit)
        : m_socket(socket)
        , m_end(std::chrono::steady_clock::now() + limit)
    {
    }

    bool send(const void* bytes, std::size_t size)
    {
        auto* at = static_cast<const char*>(bytes);
        return move(POLLOUT, size, [&](std::size_t rest) {
            const auto sent = ::send(m_socket, at, rest, MSG_DONTWAIT | MSG_NOSIGNAL);
            at += std::max<ssize_t>(sent, 0);
            return sent;
        });
    }

    bool receive(void* into, std::size_t size)
    {
        auto* at = static_cast<char*>(into);
        return move(POLLIN, size, [&](std::size_t rest) {
            const auto got = ::recv(m_socket, at, rest, MSG_DONTWAIT);
            at += std::max<ssize_t>(got, 0);
            return got;
        });
    }

    bool isLate() const { return m_isLate; }

private:
    template <typename Step> bool move(short event, std::size_t size, Step step)
    {
        while (size > 0) {
            const auto count = step(size);
            if (count > 0)
                size -= static_cast<std::size_t>(count);
            else if (count == 0 || (errno != EAGAIN && errno != EINTR) || !wait(event))
                return false;
        }
        return true;
    }

    bool wait(short event)
    {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(
            m_end - std::chrono::steady_clock::now());
        pollfd socket{m_socket, event, 0};
        m_isLate = left.count() <= 0 || ::poll(&socket, 1, static_cast<int>(left.count())) == 0;
        return !m_isLate;
    }

    const int m_socket;
    const std::chrono::steady_clock::time_point m_end;
    bool m_isLate = false;
};

/// Little of the user's environment, so that no setting changes a picture: where fonts and
/// libraries are. Filters of drawings need no threads.
std::vector<std::string> decoderEnvironment()
{
    std::vector<std::string> variables{"LANG=C.UTF-8", "RAYON_NUM_THREADS=1"};
    for (const char* name : {"HOME", "XDG_DATA_HOME", "LD_LIBRARY_PATH", "ASAN_OPTIONS"}) {
        if (const char* value = std::getenv(name))
            variables.push_back(std::string{name} + '=' + value);
    }
    return variables;
}

std::vector<char*> pointersTo(std::vector<std::string>& words)
{
    std::vector<char*> pointers;
    pointers.reserve(words.size() + 1);
    for (auto& word : words)
        pointers.push_back(word.data());
    pointers.push_back(nullptr);
    return pointers;
}

/// With the socket as its standard input and nothing else of ours; 0 if it cannot be started.
pid_t spawnDecoder(std::vector<std::string> command, int socket)
{
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, socket, STDIN_FILENO);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, STDOUT_FILENO, STDERR_FILENO);
    posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1);

    // In a group of its own, so that no terminal's signal reaches it, and with no signal blocked.
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGMASK);
    posix_spawnattr_setpgroup(&attributes, 0);
    sigset_t none;
    sigemptyset(&none);
    posix_spawnattr_setsigmask(&attributes, &none);

    auto variables = decoderEnvironment();
    pid_t process = 0;
    const int problem = posix_spawn(&process, command.front().c_str(), &actions, &attributes,
        pointersTo(command).data(), pointersTo(variables).data());
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    return problem == 0 ? process : 0;
}

}

DecoderProcess::DecoderProcess(std::vector<std::string> command, Queue& queue, Duration answerLimit)
    : m_command(std::move(command))
    , m_queue(queue)
    , m_answerLimit(answerLimit)
{
}

DecoderProcess::~DecoderProcess()
{
    std::lock_guard lock{m_mutex};
    stop();
}

std::vector<std::string> DecoderProcess::ownCommand()
{
    return {"/proc/self/exe", kDecodePictures};
}

DecodedPicture DecoderProcess::decode(std::string_view bytes, PictureFormat format, int pixels)
{
    if (bytes.size() > kLargestPictureFile || pixels < 1
        || pixels > static_cast<int>(kLargestDecodedSide))
        return {nullptr, true};
    auto square = makeSquare(pixels);
    std::lock_guard lock{m_mutex};
    m_end = {};
    const bool wasRunning = m_process != 0;
    if (!square || !start())
        return {};
    auto outcome = exchange(bytes, format, square);
    // Its end may have had nothing to do with this picture if it has answered others before.
    if (outcome == Outcome::ended && wasRunning && start())
        outcome = exchange(bytes, format, square);
    if (m_process != 0) {
        m_end = m_queue.after(kIdleLimit, [this] {
            std::lock_guard ending{m_mutex};
            stop();
        });
    }
    if (outcome != Outcome::drawn)
        return {nullptr, outcome == Outcome::notDrawable};
    cairo_surface_mark_dirty(square.get());
    return {std::move(square), true};
}

std::optional<pid_t> DecoderProcess::process()
{
    std::lock_guard lock{m_mutex};
    return m_process != 0 ? std::optional{m_process} : std::nullopt;
}

DecoderProcess::Outcome DecoderProcess::exchange(
    std::string_view bytes, PictureFormat format, const SurfacePointer& square)
{
    const auto pixels = static_cast<std::uint32_t>(cairo_image_surface_get_width(square.get()));
    const DecoderRequest request{format, pixels, static_cast<std::uint32_t>(bytes.size())};
    DecoderAnswer answer{};
    Transfer transfer{m_socket, m_answerLimit};
    bool isWhole = transfer.send(&request, sizeof request)
        && transfer.send(bytes.data(), bytes.size()) && transfer.receive(&answer, sizeof answer);
    if (isWhole && answer.isDrawn == 0)
        return Outcome::notDrawable;
    // Rows of 32-bit pixels lie without gaps on this side too.
    isWhole = isWhole
        && transfer.receive(cairo_image_surface_get_data(square.get()), bytesOfSquare(pixels));
    if (isWhole)
        return Outcome::drawn;
    stop();
    return transfer.isLate() ? Outcome::tooSlow : Outcome::ended;
}

bool DecoderProcess::start()
{
    if (m_process != 0)
        return true;
    std::array<int, 2> ends{-1, -1};
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0)
        return false;
    m_socket = ends[0];
    m_process = spawnDecoder(m_command, ends[1]);
    ::close(ends[1]);
    if (m_process == 0)
        ::close(std::exchange(m_socket, -1));
    return m_process != 0;
}

/// It holds nothing that it could lose.
void DecoderProcess::stop()
{
    if (m_process == 0)
        return;
    ::close(std::exchange(m_socket, -1));
    ::kill(m_process, SIGKILL);
    while (::waitpid(m_process, nullptr, 0) < 0 && errno == EINTR) { }
    m_process = 0;
}

}
