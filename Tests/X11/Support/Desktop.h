#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Tests/X11/Support/Connection.h"

namespace quorvel::x11tests {

inline constexpr std::uint32_t kAllDesktops = 0xFFFFFFFF;

/// What the server and the window manager say, and the requests that a pager sends.
class Desktop {
public:
    explicit Desktop(const std::string& display) : m_connection(display) { }

    Connection& connection() { return m_connection; }

    std::vector<xcb_window_t> clients();
    /// Those of the clients that belong on a taskbar.
    std::vector<xcb_window_t> taskbarClients();
    bool isOnTaskbar(xcb_window_t client);
    /// The clients that are panels.
    std::vector<xcb_window_t> docks();
    bool isViewable(xcb_window_t);
    /// Bits of a pixel; 0 if there is no such window.
    int depth(xcb_window_t);
    /// The client that a client belongs to, as its dialog.
    std::optional<xcb_window_t> parentOf(xcb_window_t client);
    std::string applicationClass(xcb_window_t);
    /// The process of the window's client, where it runs on this machine.
    std::optional<pid_t> processOf(xcb_window_t);
    /// How many windows, pictures and so on the server keeps for a process.
    std::uint32_t resourcesOf(pid_t);
    std::optional<xcb_window_t> clientTitled(const std::string& title);
    std::string title(xcb_window_t);
    std::optional<std::uint32_t> desktopOf(xcb_window_t);
    bool isHidden(xcb_window_t);
    xcb_window_t activeWindow();
    /// The client on the taskbar that has the focus, itself or in one of its dialogs.
    std::optional<xcb_window_t> focusedClient();
    std::uint32_t currentDesktop();
    std::uint32_t desktopCount();
    /// The part of the screen that is left to windows, on the current desktop.
    Frame workArea();
    /// Place and size with the manager's decoration, in pixels of the screen.
    Frame frame(xcb_window_t);
    /// The same without the decoration.
    Frame contentFrame(xcb_window_t);
    /// The uppermost window there that takes the pointer, a manager's frame with what is in it.
    xcb_window_t windowAt(int x, int y);
    /// What the screen shows there.
    std::string picture(const Frame&);
    /// The window of a running manager, as it announces itself.
    bool hasWindowManager();
    /// Whether the manager has come to its event loop and answers a request. Ask again until then;
    /// it may have missed the first.
    bool managerAnswers();
    /// Waits until the manager has done all that was asked of it so far.
    testing::AssertionResult finishRequests();

    void activate(xcb_window_t);
    /// Moves all windows away from it, or back.
    void show(bool);
    bool isShown();
    /// A condition to wait for: the window is active, which is asked for, and from time to time
    /// again. Metacity gives the focus to a window that comes just then, and forgets the request.
    std::function<bool()> activation(xcb_window_t);
    void minimise(xcb_window_t);
    void close(xcb_window_t);
    void moveToDesktop(xcb_window_t, std::uint32_t desktop);
    void switchTo(std::uint32_t desktop);
    void setDesktopCount(std::uint32_t);
    void setState(xcb_window_t, const std::string& state, bool isOn);
    void maximise(xcb_window_t);

    bool hasState(xcb_window_t, const std::string& state);

private:
    std::string typeOf(xcb_window_t);
    std::optional<std::uint32_t> number(xcb_window_t, const std::string& property);
    void send(xcb_window_t, const std::string& message, const std::vector<std::uint32_t>& data);

    Connection m_connection;
    xcb_window_t m_probe = XCB_NONE;
};

}
