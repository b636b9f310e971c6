#include "Tests/X11/Support/Client.h"

#include <array>
#include <csignal>

#include <poll.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace quorvel::x11tests {

xcb_window_t Client::open(const WindowOptions& options)
{
    auto* const connection = m_connection.get();
    const auto window = options.number ? *options.number : xcb_generate_id(connection);
    const auto& frame = options.frame;
    const std::uint32_t white = 0xFFFFFF;
    xcb_create_window(connection, XCB_COPY_FROM_PARENT, window, m_connection.root(),
        static_cast<std::int16_t>(frame.x), static_cast<std::int16_t>(frame.y),
        static_cast<std::uint16_t>(frame.width), static_cast<std::uint16_t>(frame.height), 0,
        XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_BACK_PIXEL, &white);
    describe(window, options);
    xcb_map_window(connection, window);
    m_connection.sync();
    m_windows.push_back(window);
    return window;
}

void Client::describe(xcb_window_t window, const WindowOptions& options)
{
    setTitle(window, options.title);
    setClass(window, options.applicationClass);
    if (!options.isDecorated) {
        constexpr std::uint32_t kDecorationsGiven = 2;
        m_connection.setNumbers(
            window, "_MOTIF_WM_HINTS", "_MOTIF_WM_HINTS", {kDecorationsGiven, 0, 0, 0, 0});
    }
    if (options.isFixed) {
        std::vector<std::uint32_t> hints(18, 0);
        hints[0] = 1U << 4 | 1U << 5; // least and largest size
        hints[5] = hints[7] = static_cast<std::uint32_t>(options.frame.width);
        hints[6] = hints[8] = static_cast<std::uint32_t>(options.frame.height);
        m_connection.setNumbers(window, "WM_NORMAL_HINTS", "WM_SIZE_HINTS", hints);
    }
    if (options.type)
        setType(window, *options.type);
    if (options.state)
        m_connection.setNumbers(
            window, "_NET_WM_STATE", "ATOM", {m_connection.atom(*options.state)});
    if (options.parent)
        setParent(window, *options.parent);
    if (options.desktop)
        m_connection.setNumbers(window, "_NET_WM_DESKTOP", "CARDINAL", {*options.desktop});
    if (options.pid)
        m_connection.setNumbers(window, "_NET_WM_PID", "CARDINAL", {*options.pid});
    if (options.machine)
        m_connection.setText(window, "WM_CLIENT_MACHINE", "STRING", *options.machine);
    if (options.userTime)
        m_connection.setNumbers(window, "_NET_WM_USER_TIME", "CARDINAL", {*options.userTime});
    if (options.role)
        m_connection.setText(window, "WM_WINDOW_ROLE", "STRING", *options.role);
    if (options.startupID)
        m_connection.setText(window, "_NET_STARTUP_ID", "UTF8_STRING", *options.startupID);
    if (options.icon)
        m_connection.setNumbers(
            window, "WM_HINTS", "WM_HINTS", {1U << 2, 0, 0, *options.icon, 0, 0, 0, 0, 0});
    if (options.answersClose)
        m_connection.setNumbers(
            window, "WM_PROTOCOLS", "ATOM", {m_connection.atom("WM_DELETE_WINDOW")});
}

void Client::setTitle(xcb_window_t window, const std::string& title)
{
    m_connection.setText(window, "WM_NAME", "STRING", title);
    m_connection.setText(window, "_NET_WM_NAME", "UTF8_STRING", title);
    xcb_flush(m_connection.get());
}

void Client::setClass(xcb_window_t window, const std::string& applicationClass)
{
    const std::string end(1, '\0');
    m_connection.setText(window, "WM_CLASS", "STRING", "sample" + end + applicationClass + end);
    xcb_flush(m_connection.get());
}

void Client::setType(xcb_window_t window, const std::string& type)
{
    m_connection.setNumbers(window, "_NET_WM_WINDOW_TYPE", "ATOM", {m_connection.atom(type)});
    xcb_flush(m_connection.get());
}

void Client::setParent(xcb_window_t window, xcb_window_t parent)
{
    if (parent == XCB_NONE)
        xcb_delete_property(m_connection.get(), window, m_connection.atom("WM_TRANSIENT_FOR"));
    else
        m_connection.setNumbers(window, "WM_TRANSIENT_FOR", "WINDOW", {parent});
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

void Client::place(xcb_window_t window, const Frame& frame)
{
    const std::uint32_t place[]{
        static_cast<std::uint32_t>(frame.x), static_cast<std::uint32_t>(frame.y)};
    xcb_configure_window(
        m_connection.get(), window, XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y, place);
    resize(window, frame.width, frame.height);
}

void Client::unmap(xcb_window_t window)
{
    xcb_unmap_window(m_connection.get(), window);
    m_connection.sync();
}

void Client::destroy(xcb_window_t window)
{
    xcb_destroy_window(m_connection.get(), window);
    m_connection.sync();
    std::erase(m_windows, window);
}

void Client::answerCloseRequests()
{
    while (const Reply<xcb_generic_event_t> event{xcb_poll_for_event(m_connection.get())}) {
        const auto* const message = reinterpret_cast<xcb_client_message_event_t*>(event.get());
        if ((event->response_type & 0x7f) == XCB_CLIENT_MESSAGE
            && message->data.data32[0] == m_connection.atom("WM_DELETE_WINDOW"))
            destroy(message->window);
    }
}

namespace {

/// Asks for an answer instead of work.
constexpr char kAnswer = 0;

ClientProcess::Worker openingWindows(const std::string& title, int windows)
{
    return [=](Client& client, char) {
        for (int i = 0; i < windows; ++i)
            client.open({.title = title + " " + std::to_string(i)});
    };
}

}

ClientProcess::ClientProcess(const XServer& server, const std::string& title, int windows)
    : ClientProcess(server, openingWindows(title, windows))
{
    order('o');
}

ClientProcess::ClientProcess(const XServer& server, Worker worker)
{
    int ends[2] = {-1, -1};
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0)
        return;
    m_pid = fork();
    if (m_pid == 0) {
        close(ends[0]);
        work(ends[1], server, worker);
    }
    close(ends[1]);
    m_orders = ends[0];
}

ClientProcess::~ClientProcess()
{
    kill();
    close(m_orders);
}

void ClientProcess::work(int orders, const XServer& server, const Worker& worker)
{
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    Client client(server);
    std::array<pollfd, 2> sources{
        {{orders, POLLIN, 0}, {xcb_get_file_descriptor(client.connection().get()), POLLIN, 0}}};
    while (!client.connection().isCut() && poll(sources.data(), sources.size(), -1) > 0) {
        char order = kAnswer;
        if (sources[0].revents != 0) {
            if (read(orders, &order, 1) != 1)
                break;
            if (order != kAnswer)
                worker(client, order);
        }
        client.answerCloseRequests();
        client.connection().sync();
        if (sources[0].revents != 0 && order == kAnswer && write(orders, &order, 1) != 1)
            break;
    }
    _exit(0);
}

void ClientProcess::order(char order) const
{
    send(m_orders, &order, 1, MSG_NOSIGNAL);
}

bool ClientProcess::finish() const
{
    order(kAnswer);
    char answer = 0;
    return recv(m_orders, &answer, 1, 0) == 1;
}

void ClientProcess::stop() const
{
    ::kill(m_pid, SIGSTOP);
    siginfo_t info;
    waitid(P_PID, static_cast<id_t>(m_pid), &info, WSTOPPED | WEXITED | WNOWAIT);
}

void ClientProcess::resume() const
{
    ::kill(m_pid, SIGCONT);
}

void ClientProcess::kill()
{
    if (m_pid <= 0)
        return;
    ::kill(m_pid, SIGKILL);
    waitpid(m_pid, nullptr, 0);
    m_pid = -1;
}

bool ClientProcess::hasDied()
{
    if (m_pid > 0 && waitpid(m_pid, nullptr, WNOHANG) == m_pid)
        m_pid = -1;
    return m_pid < 0;
}

}
