#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Tests/X11/Support/Connection.h"
#include "Tests/X11/Support/Desktop.h"
#include "Tests/X11/Support/Process.h"
#include "Tests/X11/Support/XServer.h"

namespace quorvel::x11tests {

struct WindowOptions {
    std::string title;
    std::string applicationClass = "Sample";
    Frame frame{200, 100, 300, 200};
    bool isDecorated = true;
    std::optional<std::string> type = {}; ///< of _NET_WM_WINDOW_TYPE
    std::optional<std::string> state = {}; ///< of _NET_WM_STATE
    std::optional<xcb_window_t> parent = {}; ///< of WM_TRANSIENT_FOR
    std::optional<std::uint32_t> desktop = {};
    std::optional<std::uint32_t> pid = {};
};

/// An application of this test's own, whose windows can say anything. It knows no close request: a
/// window manager that is asked to close one of its windows cuts the connection.
class Client {
public:
    explicit Client(const XServer& server) : m_connection(server.display()) { }

    Connection& connection() { return m_connection; }
    /// Maps a window and returns; the window manager may not have managed it yet.
    xcb_window_t open(const WindowOptions&);
    void setTitle(xcb_window_t, const std::string& title);
    void resize(xcb_window_t, int width, int height);
    void destroy(xcb_window_t);

private:
    void describe(xcb_window_t, const WindowOptions&);

    Connection m_connection;
};

/// A process that opens so many windows and then only waits.
class ClientProcess {
public:
    ClientProcess(const XServer&, const std::string& title, int windows);
    ClientProcess(const ClientProcess&) = delete;
    ClientProcess& operator=(const ClientProcess&) = delete;
    ~ClientProcess();

    void kill();

private:
    pid_t m_pid;
};

/// A terminal, as users have it.
class Terminal {
public:
    /// Starts it and returns once the window manager lists its window.
    Terminal(const XServer&, Desktop&, const std::string& title);

    xcb_window_t window() const { return m_window; }
    /// Lets the program inside change the title.
    void setTitle(const std::string&) const;
    bool isRunning() { return m_process.isRunning(); }

private:
    std::filesystem::path m_pipe;
    Process m_process;
    xcb_window_t m_window = XCB_NONE;
};

}
