#pragma once

#include <gtest/gtest.h>

#include "Tests/X11/Support/Bar.h"
#include "Tests/X11/Support/Client.h"
#include "Tests/X11/Support/Desktop.h"
#include "Tests/X11/Support/Eventually.h"
#include "Tests/X11/Support/Pointer.h"
#include "Tests/X11/Support/WindowManager.h"
#include "Tests/X11/Support/XServer.h"

namespace quorvel::x11tests {

/// A user's desktop under one of the window managers, without a bar yet.
class DesktopFixture {
public:
    explicit DesktopFixture(
        ManagerKind kind, const std::vector<std::string>& serverArguments = {}, int depth = 24)
        : server(serverArguments, depth)
        , manager(server, desktop, kind)
    {
    }

    /// Clicks a window's chip where the bar says it is, and takes the pointer off the bar.
    void clickChip(const Bar& bar, xcb_window_t window, Button button = Button::primary)
    {
        const auto state = bar.state();
        ASSERT_TRUE(state.chipOf(window)) << "no chip for " << desktop.title(window);
        pointer.click(state.chipFrame(window), button);
        pointer.moveTo(5, 5);
    }

    /// Runs the program once with these arguments, to its end.
    CommandResult run(const std::vector<std::string>& arguments) const
    {
        return runProgram(server.environment(), server.folder(), arguments);
    }
    testing::AssertionResult becomesActive(xcb_window_t window)
    {
        return eventually([&] { return desktop.activeWindow() == window; });
    }
    static testing::AssertionResult getsChip(const Bar& bar, xcb_window_t window)
    {
        return eventually([&] { return bar.state().chipOf(window) != nullptr; });
    }

    /// Whether the bar agrees with what there is once everything has been done that was begun.
    testing::AssertionResult settles(const Bar& bar)
    {
        auto finished = desktop.finishRequests();
        return finished ? bar.agreesWith(desktop) : finished;
    }

    XServer server;
    Desktop desktop{server.display()};
    WindowManager manager;
    Pointer pointer{server.display()};
};

/// A suite that runs under one, for what no manager has a part in.
class UnderOpenbox : public testing::Test, public DesktopFixture {
protected:
    UnderOpenbox() : DesktopFixture(ManagerKind::openbox) { }
};

/// A suite that runs under each window manager.
class UnderEachManager : public testing::TestWithParam<ManagerKind>, public DesktopFixture {
protected:
    UnderEachManager() : DesktopFixture(GetParam()) { }
};

/// With a bar that is there before any window.
class BarUnderEachManager : public UnderEachManager {
protected:
    void SetUp() override { ASSERT_TRUE(bar.appears()); }

    Bar bar{server};
};

inline std::string managerName(const testing::TestParamInfo<ManagerKind>& info)
{
    return nameOf(info.param);
}

#define QUORVEL_UNDER_EACH_MANAGER(suite)                                                          \
    INSTANTIATE_TEST_SUITE_P(                                                                      \
        , suite, testing::Values(ManagerKind::openbox, ManagerKind::xfwm4), managerName)

}
