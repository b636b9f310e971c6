#include <algorithm>
#include <array>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <memory>

#include "Tests/X11/Support/DesktopFixture.h"

namespace quorvel::x11tests {

namespace {

bool has(const std::string& log, std::string_view text)
{
    return log.find(text) != std::string::npos;
}

}

class CommandLine : public testing::Test {
protected:
    CommandResult run(const std::vector<std::string>& arguments) const
    {
        return runProgram(server.environment(), server.folder(), arguments);
    }

    XServer server;
    Desktop desktop{server.display()};
};

// Faults: a script that takes silence for an empty bar, a program that hangs without a display.
TEST_F(CommandLine, requestsFailClearlyWithoutABarOrADisplay)
{
    for (const auto* request : {"--state", "--quit"}) {
        const auto answer = run({request});
        EXPECT_EQ(answer.status, 1) << request;
        EXPECT_EQ(answer.output, "");
        EXPECT_NE(answer.error, "");
    }

    auto environment = server.environment();
    environment["DISPLAY"] = "";
    const auto start = runProgram(environment, server.folder(), {});
    EXPECT_EQ(start.status, 1);
    EXPECT_NE(start.error, "");
}

// Faults: two bars on one screen, a refusal that does not say whom to end, a takeover without one.
TEST_F(CommandLine, aSecondBarIsRefusedOrTakesOver)
{
    WindowManager manager(server, desktop, ManagerKind::openbox);
    Bar first(server);
    ASSERT_TRUE(first.appears());

    const auto refused = run({});
    EXPECT_EQ(refused.status, 1);
    EXPECT_NE(refused.error.find(std::to_string(first.process().pid())), std::string::npos)
        << refused.error;

    // Programs that it starts inherit where it is.
    EXPECT_EQ(
        std::filesystem::read_symlink("/proc/" + std::to_string(first.process().pid()) + "/cwd"),
        server.environment().at("HOME"));
    const auto noFolder = server.folder() / "none" / "trace";
    EXPECT_EQ(run({"--replace", "--trace=" + noFolder.string()}).status, 1);
    EXPECT_TRUE(first.isRunning()) << "ended by one that cannot run";

    first.process().signal(SIGSTOP);
    Bar second(server, {"--replace"});
    EXPECT_EQ(first.process().waitForEnd(), 0);
    EXPECT_TRUE(second.appears());
    const auto refusedAgain = run({});
    EXPECT_NE(refusedAgain.error.find(std::to_string(second.process().pid())), std::string::npos)
        << refusedAgain.error;

    EXPECT_EQ(run({"--quit"}).status, 0);
    EXPECT_EQ(second.process().waitForEnd(), 0);
}

// Fault: a bar that hangs keeps its place until somebody finds its process.
TEST_F(CommandLine, aBarThatHangsIsKilledByTheOneThatReplacesIt)
{
    WindowManager manager(server, desktop, ManagerKind::openbox);
    const auto name = "runtime/quorvel/X" + server.display().substr(1) + ".lock";
    EXPECT_EQ(run({"--state"}).status, 1); // makes the folder
    Process hanging(
        {"sh", "-c", "trap '' TERM; exec 9<>\"$0\"; flock 9; echo $$ >&9; exec sleep 60",
            server.folder() / name},
        server.environment());
    ASSERT_TRUE(eventually([&] { return !readFile(server.folder() / name).empty(); }));

    Bar bar(server, {"--replace"});
    EXPECT_EQ(hanging.waitForEnd(), 128 + SIGKILL);
    EXPECT_TRUE(bar.appears());
}

// Faults: two bars on one screen where each has its own runtime folder, as those of two users have.
TEST_F(CommandLine, theDisplayItselfSaysThatABarIsThere)
{
    WindowManager manager(server, desktop, ManagerKind::openbox);
    Bar first(server);
    ASSERT_TRUE(first.appears());
    auto elsewhere = server.environment();
    elsewhere["XDG_RUNTIME_DIR"] = elsewhere["HOME"];
    const auto refused = runProgram(elsewhere, server.folder(), {});
    EXPECT_EQ(refused.status, 1);
    EXPECT_NE(refused.error.find(std::to_string(first.process().pid())), std::string::npos)
        << refused.error;

    const Process second({QUORVEL_PROGRAM, "--replace"}, elsewhere);
    EXPECT_EQ(first.process().waitForEnd(), 0);
    const auto quit
        = [&] { return runProgram(elsewhere, server.folder(), {"--quit"}).status == 0; };
    EXPECT_TRUE(eventually(quit));
}

// Fault: two bars on one screen, each of which has found it free.
TEST_F(CommandLine, ofTwoThatStartAtOneMomentOneIsTheBar)
{
    WindowManager manager(server, desktop, ManagerKind::openbox);
    struct Starting {
        Environment environment;
        std::filesystem::path log;
        std::unique_ptr<Process> process;
    };
    std::array<Starting, 2> bars;
    Connection holder(server.display());
    xcb_grab_server(holder.get());
    holder.sync();
    for (std::size_t i = 0; i < bars.size(); ++i) {
        auto& bar = bars[i];
        const auto folder = server.folder() / ("runtime" + std::to_string(i));
        std::filesystem::create_directory(folder);
        std::filesystem::permissions(folder, std::filesystem::perms::owner_all);
        bar.environment = server.environment();
        bar.environment["XDG_RUNTIME_DIR"] = folder;
        bar.log = folder / "log";
        bar.process = std::make_unique<Process>(
            std::vector<std::string>{QUORVEL_PROGRAM}, bar.environment, Outputs{{}, bar.log});
        // Made just before the server is spoken to.
        ASSERT_TRUE(eventually([&] { return std::filesystem::exists(folder / "quorvel"); }));
    }
    xcb_ungrab_server(holder.get());
    holder.sync();

    const auto endedOne = [&] {
        return std::ranges::find_if(bars, [](auto& bar) { return !bar.process->isRunning(); });
    };
    ASSERT_TRUE(eventually([&] { return endedOne() != bars.end(); }));
    auto& refused = *endedOne();
    auto& running = &refused == &bars[0] ? bars[1] : bars[0];
    EXPECT_EQ(refused.process->waitForEnd(), 1);
    EXPECT_TRUE(has(readFile(refused.log), std::to_string(running.process->pid())))
        << readFile(refused.log);
    EXPECT_TRUE(eventually(
        [&] { return runProgram(running.environment, server.folder(), {"--quit"}).status == 0; }));
    EXPECT_EQ(running.process->waitForEnd(), 0);
}

// Faults: a bar that gives up, or that misses the manager's coming.
TEST_F(CommandLine, aBarStartedFirstComesUpWithTheWindowManager)
{
    Client client(server);
    Bar bar(server);
    const auto answers = [&] { return run({"--state"}).status == 0; };
    ASSERT_TRUE(eventually(answers)) << bar.log();
    EXPECT_TRUE(eventually([&] { return has(bar.log(), "no window manager is running"); }));

    WindowManager manager(server, desktop, ManagerKind::openbox);
    client.open({.title = "window"});

    EXPECT_TRUE(bar.appears());
    EXPECT_TRUE(bar.agreesWith(desktop));
}

// Faults: silence about two panels in one place, or about one that comes later; a line about the
// bar's own panel, or about a panel at another edge.
TEST_F(CommandLine, anotherPanelAtTheSameEdgeIsNamed)
{
    WindowManager manager(server, desktop, ManagerKind::openbox);
    Client client(server);
    const auto openPanel = [&](const std::string& title, std::uint32_t top, std::uint32_t bottom) {
        const auto window = client.open({.title = title, .type = "_NET_WM_WINDOW_TYPE_DOCK"});
        client.connection().setNumbers(window, "_NET_WM_STRUT", "CARDINAL", {0, 0, top, bottom});
        client.connection().sync();
    };
    openPanel("first", 0, 30);
    Bar bar(server);
    EXPECT_TRUE(bar.appears());
    EXPECT_TRUE(eventually([&] { return has(bar.log(), "another panel (first, process "); }))
        << bar.log();
    openPanel("above", 30, 0);
    openPanel("second", 0, 30);
    EXPECT_TRUE(eventually([&] { return has(bar.log(), "another panel (second, process "); }));
    EXPECT_FALSE(has(bar.log(), "above"));
    EXPECT_FALSE(has(bar.log(), "Quorvel"));
}

// Faults: a message that ends the bar because nobody can read it, or lands in the lock file, which
// has the number of standard error when that is closed.
TEST_F(CommandLine, noStandardErrorEndsTheBar)
{
    std::ofstream(server.settingsFile()) << "broken";
    for (const auto* nowhere : {"2>&-", "2>/dev/full", "2>&1 | true"}) {
        SCOPED_TRACE(nowhere);
        const Process shell(
            {"sh", "-c", std::string{"exec \"$0\" --trace "} + nowhere, QUORVEL_PROGRAM},
            server.environment());
        const auto answers = [&] { return run({"--state"}).status == 0; };
        EXPECT_TRUE(eventually(answers));
        const auto lock = server.folder() / "runtime/quorvel" / ("X" + server.display().substr(1));
        EXPECT_LT(readFile(lock.string() + ".lock").size(), 10U);
        EXPECT_EQ(run({"--quit"}).status, 0);
    }
}

}
