#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "Tests/X11/Support/Connection.h"
#include "Tests/X11/Support/XServer.h"

namespace quorvel::x11tests {

struct WindowOptions {
    std::string title;
    std::string applicationClass = "Sample";
    Frame frame{200, 100, 300, 200};
    bool isDecorated = true;
    bool isFixed = false; ///< its least size is its largest one
    std::optional<std::string> type = {}; ///< of _NET_WM_WINDOW_TYPE
    std::optional<std::string> state = {}; ///< of _NET_WM_STATE
    std::optional<xcb_window_t> parent = {}; ///< of WM_TRANSIENT_FOR
    std::optional<std::uint32_t> desktop = {};
    std::optional<std::uint32_t> pid = {}; ///< of _NET_WM_PID
    std::optional<std::string> machine = {}; ///< of WM_CLIENT_MACHINE
    std::optional<xcb_window_t> number = {}; ///< one that it had before
    std::optional<std::uint32_t> userTime = {}; ///< 0: it wants no focus when it comes
    std::optional<xcb_pixmap_t> icon = {}; ///< of WM_HINTS; openbox gives one to who has none yet
    std::optional<std::string> role = {}; ///< of WM_WINDOW_ROLE
    std::optional<std::string> startupID = {}; ///< that its program was started with
    bool answersClose = false; ///< else a manager that closes the window cuts the connection
};

/// An application of this test's own, whose windows can say anything.
class Client {
public:
    explicit Client(const XServer& server) : Client(server.display()) { }
    explicit Client(const std::string& display) : m_connection(display) { }

    Connection& connection() { return m_connection; }
    /// Those that it opened and has not destroyed, oldest first.
    const std::vector<xcb_window_t>& windows() const { return m_windows; }
    /// Maps a window and returns; the window manager may not have managed it yet.
    xcb_window_t open(const WindowOptions&);
    void setTitle(xcb_window_t, const std::string& title);
    void setClass(xcb_window_t, const std::string& applicationClass);
    void setType(xcb_window_t, const std::string& type);
    /// None takes the parent away.
    void setParent(xcb_window_t, xcb_window_t parent);
    void resize(xcb_window_t, int width, int height);
    void place(xcb_window_t, const Frame&);
    void unmap(xcb_window_t);
    void destroy(xcb_window_t);
    /// Destroys the windows whose close button was pressed.
    void answerCloseRequests();

private:
    void describe(xcb_window_t, const WindowOptions&);

    Connection m_connection;
    std::vector<xcb_window_t> m_windows;
};

/// A client in a process of its own, which can be stopped and killed.
class ClientProcess {
public:
    /// Carries out an order, in that process.
    using Worker = std::function<void(Client&, char order)>;

    ClientProcess(const XServer&, Worker);
    /// Opens so many windows.
    ClientProcess(const XServer&, const std::string& title, int windows);
    ClientProcess(const ClientProcess&) = delete;
    ClientProcess& operator=(const ClientProcess&) = delete;
    ~ClientProcess();

    pid_t pid() const { return m_pid; }
    /// Orders are carried out in sequence, by a stopped process once it goes on.
    void order(char) const;
    /// Returns once every order has been carried out; false if the process ends first, as it does
    /// when its connection is cut.
    bool finish() const;
    void stop() const;
    void resume() const;
    void kill();
    /// Of itself.
    bool hasDied();

private:
    [[noreturn]] static void work(int orders, const XServer&, const Worker&);

    pid_t m_pid = -1;
    int m_orders = -1; ///< a socket
};

}
