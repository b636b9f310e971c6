#include <cstdlib>
#include <memory>
#include <optional>
#include <string>

#include "Hosts/X11/Desktop/Clients.h"
#include "Tests/X11/Support/Client.h"
#include "Tests/X11/Support/HostServices.h"

namespace quorvel::x11tests {

namespace {

/// What a window manager says of itself, in pieces: real ones say it in the order of their own.
class StagedManager {
public:
    explicit StagedManager(const std::string& display) : m_connection(display)
    {
        m_check = makeWindow(xcb_generate_id(m_connection.get()));
    }

    void takeOver() { own(m_check); }
    void nameOnRoot() { name(m_connection.root()); }
    void nameItself() { name(m_check); }
    void list(const std::vector<xcb_window_t>& clients)
    {
        m_connection.setNumbers(m_connection.root(), "_NET_CLIENT_LIST", "WINDOW", clients);
        m_connection.sync();
    }
    /// It is killed and started anew, with the same numbers as the server gives them out. Of one
    /// that is killed, the server takes the selection before the windows.
    void restart()
    {
        own(XCB_NONE);
        xcb_destroy_window(m_connection.get(), m_check);
        makeWindow(m_check);
        m_connection.sync();
    }

private:
    xcb_window_t makeWindow(xcb_window_t number)
    {
        xcb_create_window(m_connection.get(), XCB_COPY_FROM_PARENT, number, m_connection.root(), -1,
            -1, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
        return number;
    }
    void own(xcb_window_t owner)
    {
        xcb_set_selection_owner(
            m_connection.get(), owner, m_connection.atom("WM_S0"), XCB_CURRENT_TIME);
        m_connection.sync();
    }
    void name(xcb_window_t window)
    {
        m_connection.setNumbers(window, "_NET_SUPPORTING_WM_CHECK", "WINDOW", {m_check});
        m_connection.sync();
    }

    Connection m_connection;
    xcb_window_t m_check;
};

}

/// The host between two window managers, with one window that was there before it.
class ManagerHandover : public testing::Test {
protected:
    void SetUp() override
    {
        for (const auto& [name, value] : server.environment())
            setenv(name.c_str(), value.c_str(), 1);
        manager.takeOver();
        manager.nameItself();
        manager.nameOnRoot();
        manager.list({window});
        host.emplace();
        ASSERT_TRUE(titled("window"));
    }

    /// The number of the window that the host knows under this title.
    std::optional<WindowID> titled(const std::string& title)
    {
        return host->services.model().read([&](const auto& model) -> std::optional<WindowID> {
            for (const auto& [id, record] : model.windows) {
                if (record.title == title)
                    return id;
            }
            return std::nullopt;
        });
    }
    /// Whether the host has come to what was done before this, and still has the window.
    bool catchesUp()
    {
        const auto title = "title " + std::to_string(++titles);
        client.setTitle(window, title);
        return host->runUntil([&] { return titled(title).has_value(); });
    }
    /// Lets pass what the host waits for a window that is on no list.
    void passGrace()
    {
        bool isOver = false;
        const auto end = host->dispatch.main().after(
            4 * xdg::x11::Clients::kLeaveGrace, [&] { isOver = true; });
        ASSERT_TRUE(host->runUntil([&] { return isOver; }));
    }

    XServer server;
    Client client{server};
    const xcb_window_t window = client.open({.title = "window"});
    StagedManager manager{server.display()};
    std::optional<HostServices> host;
    int titles = 0;
};

// Fault: one that gives way empties its list, and on a busy machine ends so much later that its
// windows are taken for closed.
TEST_F(ManagerHandover, keepsTheWindowsOfOneThatGivesWaySlowly)
{
    StagedManager successor(server.display());
    successor.takeOver();
    manager.list({});
    ASSERT_TRUE(catchesUp());
    const auto before = titled("title 1");
    passGrace();
    EXPECT_EQ(titled("title 1"), before);

    successor.nameItself();
    successor.nameOnRoot();
    const auto next = client.open({.title = "next"});
    successor.list({window, next});
    EXPECT_TRUE(host->runUntil([&] { return titled("next").has_value(); }));
    EXPECT_EQ(titled("title 1"), before);
}

// Fault: one that does not give way outlives whoever tried to replace it, and is not believed
// again.
TEST_F(ManagerHandover, returnsToOneThatDidNotGiveWay)
{
    std::make_unique<StagedManager>(server.display())->takeOver();
    ASSERT_TRUE(catchesUp());
    const auto next = client.open({.title = "next"});
    manager.list({window, next});
    EXPECT_TRUE(host->runUntil([&] { return titled("next").has_value(); }));
}

// Fault: the host believes that it listens to the new window of the same number already, and does
// not hear that it names itself.
TEST_F(ManagerHandover, believesOneWhoseWindowHasTheNumberOfTheLast)
{
    manager.restart();
    manager.takeOver();
    manager.nameOnRoot();
    ASSERT_TRUE(catchesUp());
    manager.nameItself();
    const auto next = client.open({.title = "next"});
    manager.list({window, next});
    EXPECT_TRUE(host->runUntil([&] { return titled("next").has_value(); }));
}

}
