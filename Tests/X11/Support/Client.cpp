#include "Tests/X11/Support/Client.h"

#include <csignal>
#include <fstream>

#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "Tests/X11/Support/Eventually.h"

namespace quorvel::x11tests {

xcb_window_t Client::open(const WindowOptions& options)
{
    auto* const connection = m_connection.get();
    const auto window = xcb_generate_id(connection);
    const auto& frame = options.frame;
    const std::uint32_t white = 0xFFFFFF;
    xcb_create_window(connection, XCB_COPY_FROM_PARENT, window, m_connection.root(),
        static_cast<std::int16_t>(frame.x), static_cast<std::int16_t>(frame.y),
        static_cast<std::uint16_t>(frame.width), static_cast<std::uint16_t>(frame.height), 0,
        XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_BACK_PIXEL, &white);
    describe(window, options);
    xcb_map_window(connection, window);
    m_connection.sync();
    return window;
}

void Client::describe(xcb_window_t window, const WindowOptions& options)
{
    setTitle(window, options.title);
    const std::string instance = "sample";
    m_connection.setText(window, "WM_CLASS", "STRING",
        instance + std::string(1, '\0') + options.applicationClass + std::string(1, '\0'));
    if (!options.isDecorated) {
        constexpr std::uint32_t kDecorationsGiven = 2;
        m_connection.setNumbers(
            window, "_MOTIF_WM_HINTS", "_MOTIF_WM_HINTS", {kDecorationsGiven, 0, 0, 0, 0});
    }
    if (options.type)
        m_connection.setNumbers(
            window, "_NET_WM_WINDOW_TYPE", "ATOM", {m_connection.atom(*options.type)});
    if (options.state)
        m_connection.setNumbers(
            window, "_NET_WM_STATE", "ATOM", {m_connection.atom(*options.state)});
    if (options.parent)
        m_connection.setNumbers(window, "WM_TRANSIENT_FOR", "WINDOW", {*options.parent});
    if (options.desktop)
        m_connection.setNumbers(window, "_NET_WM_DESKTOP", "CARDINAL", {*options.desktop});
    if (options.pid)
        m_connection.setNumbers(window, "_NET_WM_PID", "CARDINAL", {*options.pid});
}

void Client::setTitle(xcb_window_t window, const std::string& title)
{
    m_connection.setText(window, "WM_NAME", "STRING", title);
    m_connection.setText(window, "_NET_WM_NAME", "UTF8_STRING", title);
    xcb_flush(m_connection.get());
}

void Client::resize(xcb_window_t window, int width, int height)
{
    const std::uint32_t size[]{
        static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height)};
    xcb_configure_window(
        m_connection.get(), window, XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT, size);
    m_connection.sync();
}

void Client::destroy(xcb_window_t window)
{
    xcb_destroy_window(m_connection.get(), window);
    m_connection.sync();
}

ClientProcess::ClientProcess(const XServer& server, const std::string& title, int windows)
    : m_pid(fork())
{
    if (m_pid != 0)
        return;
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    Client client(server);
    for (int i = 0; i < windows; ++i)
        client.open({.title = title + " " + std::to_string(i)});
    for (;;)
        pause();
}

ClientProcess::~ClientProcess()
{
    kill();
}

void ClientProcess::kill()
{
    if (m_pid <= 0)
        return;
    ::kill(m_pid, SIGKILL);
    waitpid(m_pid, nullptr, 0);
    m_pid = -1;
}

namespace {

std::filesystem::path makePipe(const std::filesystem::path& folder)
{
    static int count = 0;
    auto path = folder / ("terminal-" + std::to_string(++count));
    mkfifo(path.c_str(), 0600);
    return path;
}

std::vector<std::string> terminalCommand(
    const std::string& title, const std::filesystem::path& pipe)
{
    // Opened for both directions, the pipe never ends for the reader.
    const auto script
        = R"(exec 3<>"$1"; while read -r t <&3; do printf '\033]2;%s\007' "$t"; done)";
    return {"xterm", "-T", title, "-geometry", "60x15", "-e", "bash", "-c", script, "_", pipe};
}

}

Terminal::Terminal(const XServer& server, Desktop& desktop, const std::string& title)
    : m_pipe(makePipe(server.folder()))
    , m_process(terminalCommand(title, m_pipe), server.environment())
{
    const auto isListed = [&] {
        m_window = desktop.clientTitled(title).value_or(XCB_NONE);
        return m_window != XCB_NONE;
    };
    EXPECT_TRUE(eventually(10s, isListed)) << title;
}

void Terminal::setTitle(const std::string& title) const
{
    std::ofstream(m_pipe) << title << std::endl;
}

}
