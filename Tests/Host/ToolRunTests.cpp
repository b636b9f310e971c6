#include "Hosts/Posix/ToolRun.h"

#include <csignal>

#include <gtest/gtest.h>

namespace quorvel::test {

namespace {

using namespace std::chrono_literals;

constexpr char kShell[] = "/bin/sh";

std::optional<ToolResult> shell(const std::string& script, posix::ToolBounds bounds = {.time = 60s})
{
    return posix::runTool(kShell, {"-c", script}, bounds);
}

}

TEST(ToolRun, aToolGetsItsArgumentsAsTheyAreAndItsStreamsAreKeptApart)
{
    const auto result = posix::runTool(kShell,
        {"-c", "printf '%s|' \"$@\"; cat; echo wrong >&2; exit 3", "x", "a b", "", "$c\""},
        {.time = 60s});
    ASSERT_TRUE(result);
    EXPECT_EQ(result->standardOutput, "a b||$c\"|") << "and nothing to read";
    EXPECT_EQ(result->standardError, "wrong\n");
    EXPECT_EQ(result->exitStatus, 3);
}

TEST(ToolRun, aToolThatFillsBothStreamsIsNotWaitedForWhileItWaits)
{
    const auto result = shell("head -c 300000 /dev/zero >&2; head -c 300000 /dev/zero");
    ASSERT_TRUE(result);
    EXPECT_EQ(result->standardOutput.size(), 300'000U);
    EXPECT_EQ(result->standardError.size(), 300'000U);
}

TEST(ToolRun, whatDoesNotEndWithinItsBoundsIsGivenUp)
{
    // An attempt that failed, which is not the same as a program that is not there.
    const auto isKilled = [](const std::optional<ToolResult>& result) {
        return result && result->exitStatus != 0 && result->standardOutput.empty();
    };
    EXPECT_TRUE(isKilled(shell("exec sleep 600", {.time = 50ms}))) << "silent";
    EXPECT_TRUE(isKilled(shell("exec >&- 2>&-; exec sleep 600", {.time = 50ms})))
        << "streams closed";
    EXPECT_TRUE(isKilled(shell("sleep 60 & exit 0", {.time = 50ms}))) << "a child has the streams";
    EXPECT_TRUE(isKilled(shell("exec cat /dev/zero", {.output = 100'000}))) << "endless";
    EXPECT_TRUE(isKilled(shell("exec cat /dev/zero >&2", {.output = 100'000})));
    EXPECT_TRUE(isKilled(shell("echo half; kill -9 $$")));
    EXPECT_FALSE(posix::runTool("/nowhere/at/all", {}));
}

TEST(ToolRun, signalsThatThisProgramIgnoresReachTheTool)
{
    std::signal(SIGPIPE, SIG_IGN);
    const auto result = shell("kill -PIPE $$; echo survived");
    std::signal(SIGPIPE, SIG_DFL);
    ASSERT_TRUE(result);
    EXPECT_NE(result->exitStatus, 0);
    EXPECT_EQ(result->standardOutput, "");
}

}
